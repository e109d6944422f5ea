#include <sys/stat.h>

#include "tools/kelfont/ArgParser.h"
#include "tools/kelfont/Commands.h"
#include "tools/kelfont/PackageWriter.h"
#include "tools/kelfont/ProgressBar.h"

namespace kelfont_tool {

bool outputFolderExists(const std::string& file, std::string& folder) {
  const std::size_t slash = file.find_last_of('/');
  folder = slash == std::string::npos ? "." : slash == 0 ? "/" : file.substr(0, slash);
  struct stat st;
  return stat(folder.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

int RunPack(const std::vector<std::string>& args, Console& console) {
  ArgParser parser("pack",
                   "Analyses the fonts directly inside the given folders and writes the default\n"
                   "font-data package an app ships: the font table (faces known by metrics\n"
                   "only, no file paths), one data file per face, and the font chain, default\n"
                   "fonts and script default fonts lists of --lists.");
  parser.AddList("fonts", "DIR", "font folders, in scan order (subfolders are not entered)", true);
  parser.AddValue("lists", "DIR", "folder holding fc, df, sf and any sf_<language>");
  parser.AddValue("output", "FILE",
                  "package to write (default qrfont.zip, the name the library opens)",
                  "o");
  parser.AddFlag("quiet", "print nothing but errors and warnings");
  parser.AddFlag("verbose", "also list the list names that no packed font has");
  parser.SetEpilog(
      "Exit status: 0 written, 1 a folder, font or list could not be read or the\n"
      "package not written, 2 bad arguments.\n\n"
      "Example:\n"
      "  kelfont pack --fonts /usr/share/fonts/truetype/dejavu "
      "/usr/share/fonts/truetype/nanum \\\n"
      "               --lists data -o build/qrfont.zip");
  if (int stop = parseArguments(parser, args, console); stop >= 0) return stop;
  if (!parser.Has("fonts")) {
    console.err << "kelfont pack: missing --fonts DIR... (see --help)\n";
    return kExitUsage;
  }
  if (!parser.Has("lists")) {
    console.err << "kelfont pack: missing --lists DIR (see --help)\n";
    return kExitUsage;
  }
  const std::string output = parser.Value("output", "qrfont.zip");
  struct stat st;
  if (stat(output.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) {
    console.err << "kelfont pack: " << output << " is a folder; give the package file name\n";
    return kExitUsage;
  }

  std::string folder;
  if (!outputFolderExists(output, folder)) {
    console.err << "kelfont pack: output folder not found: " << folder << '\n';
    return kExitFailure;
  }

  PackageWriter writer;
  if (!writer.ReadLists(parser.Value("lists"))) {
    console.err << "kelfont pack: " << writer.GetError() << '\n';
    return kExitFailure;
  }
  {
    ProgressBar bar(console.err, console.errIsTerminal, "analysing");
    writer.SetProgress([&bar](std::size_t done, std::size_t total, const std::string& file) {
      bar.Update(done, total, file);
    });
    const bool analysed = writer.AnalyzeDirectories(parser.Values("fonts"));
    bar.Finish();
    if (!analysed) {
      console.err << "kelfont pack: " << writer.GetError() << '\n';
      return kExitFailure;
    }
  }
  const bool written = writer.Write(output);
  for (const std::string& warning : writer.GetWarnings()) {
    console.err << "kelfont pack: warning: " << warning << '\n';
  }
  if (!written) {
    console.err << "kelfont pack: " << writer.GetError() << '\n';
    return kExitFailure;
  }
  const std::vector<std::string> unknown = writer.GetUnknownListNames();
  if (parser.Has("verbose")) {
    for (const std::string& name : unknown) {
      console.err << "kelfont pack: note: not among the packed fonts: " << name << '\n';
    }
  } else if (!unknown.empty() && !parser.Has("quiet")) {
    console.err << "kelfont pack: note: " << unknown.size()
                << " names in the lists are not among the packed fonts (fonts that documents\n"
                   "  ask for, or that are used where installed); --verbose lists them\n";
  }
  if (!parser.Has("quiet")) {
    const auto entries = writer.GetEntryNames();
    stat(output.c_str(), &st);
    console.out << "packed " << writer.GetTable().GetFontInfoCount() << " faces of "
                << writer.GetFileCount() << " files (" << writer.GetTable().GetFontCount()
                << " fonts) into " << output << ": " << entries.size() << " entries, "
                << st.st_size << " bytes\n";
  }
  return kExitOk;
}

}  // namespace kelfont_tool
