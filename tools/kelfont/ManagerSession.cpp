#include "tools/kelfont/ManagerSession.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>

#include "base/Environment.h"
#include "base/FileUtils.h"
#include "base/Locale.h"
#include "base/Log.h"
#include "native/DefaultFontInfoFileExtracter.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_tool {

namespace {

void dropLogLine(int, const char*, const char*, void*) {}

void printLogLine(int, const char* tag, const char* message, void* context) {
  *static_cast<std::ostream*>(context) << "E/" << tag << ": " << message << '\n';
}

bool isDirectory(const std::string& path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

std::string defaultStorage() {
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache != nullptr && *cache == '/') return std::string(cache) + "/kelfont";
  const char* home = std::getenv("HOME");
  return std::string(home != nullptr && *home != '\0' ? home : ".") + "/.cache/kelfont";
}

std::string withSlash(std::string path) {
  if (path.empty() || path.back() != '/') path += '/';
  return path;
}

}  // namespace

ManagerSession::ManagerSession() = default;

ManagerSession::~ManagerSession() {
  manager_.reset();
  extracter_.reset();
  if (hooked_) qro_base::setLogHook(nullptr, nullptr);
}

void ManagerSession::AddOptions(ArgParser& parser) {
  parser.AddValue("storage", "DIR",
                  "cache folder (default $XDG_CACHE_HOME/kelfont or ~/.cache/kelfont)");
  parser.AddValue("package", "FILE", "default package, a file named qrfont.zip");
  parser.AddList("fonts", "DIR", "font folder to scan", false);
  parser.AddValue("lang", "TAG", "interface language, e.g. ko-KR");
  parser.AddFlag("fresh", "empty the cache folder first");
  parser.AddFlag("verbose", "show the library's log lines");
}

int ManagerSession::Open(const ArgParser& parser, const std::string& command,
                         Console& console) {
  const std::string prefix = "kelfont " + command + ": ";
  std::string packageDirectory;
  if (parser.Has("package")) {
    const std::string package = parser.Value("package");
    struct stat st;
    if (stat(package.c_str(), &st) != 0 || !S_ISREG(st.st_mode)) {
      console.err << prefix << "package not found: " << package << '\n';
      return kExitFailure;
    }
    const std::size_t slash = package.find_last_of('/');
    if (package.substr(slash + 1) != "qrfont.zip") {
      console.err << prefix << "the package must be named qrfont.zip: " << package << '\n';
      return kExitUsage;
    }
    packageDirectory = slash == std::string::npos ? "./" : package.substr(0, slash + 1);
  }
  for (const std::string& directory : parser.Values("fonts")) {
    if (!isDirectory(directory)) {
      console.err << prefix << "font folder not found: " << directory << '\n';
      return kExitFailure;
    }
  }
  const std::string storage = withSlash(parser.Value("storage", defaultStorage()));
  if (!qro_base::confirmFilePathExists(storage.c_str()) || !isDirectory(storage)) {
    console.err << prefix << "cannot create the cache folder " << storage << '\n';
    return kExitFailure;
  }
  if (parser.Has("lang")) {
    const std::string tag = parser.Value("lang");
    const std::size_t dash = tag.find('-');
    qro_base::ensureEnvironment().SetUILocale(
        dash == std::string::npos ? qro_base::Locale(tag, "")
                                  : qro_base::Locale(tag.substr(0, dash), tag.substr(dash + 1)));
  }
  if (parser.Has("verbose")) {
    qro_base::setLogHook(printLogLine, &console.err);
  } else {
    qro_base::setLogHook(dropLogLine, nullptr);
  }
  hooked_ = true;

  // With no package the extracter looks into an empty name and finds
  // nothing, which the manager takes as a package without entries.
  extracter_ = std::make_unique<qro_ni::DefaultFontInfoFileExtracter>(
      storage, packageDirectory.empty() ? storage + "no-package/" : packageDirectory);
  manager_ = std::make_unique<ToolFontManager>(extracter_.get(), storage, parser.Values("fonts"));
  if (parser.Has("fresh")) manager_->RemoveAllFiles();
  manager_->Initialize();
  return kExitOk;
}

int ManagerSession::ResolveFont(const ArgParser& parser, const std::string& command,
                                Console& console) {
  const std::string prefix = "kelfont " + command + ": ";
  if (parser.Has("font")) {
    const int index = manager_->GetFontIndex(parser.Value("font"));
    if (index < 0) {
      console.err << prefix << "unknown font '" << parser.Value("font")
                  << "' ('kelfont fonts' lists the known ones)\n";
    }
    return index;
  }
  const int index = manager_->GetDefaultFontIndex(0);
  if (index < 0) {
    console.err << prefix << "no font: give --fonts DIR or --package FILE, or --font NAME\n";
  }
  return index;
}

std::u32string decodeUtf8(const std::string& text) {
  std::u32string out;
  for (std::size_t i = 0; i < text.size();) {
    const unsigned char lead = static_cast<unsigned char>(text[i]);
    int length = lead < 0x80 ? 1 : (lead >> 5) == 6 ? 2 : (lead >> 4) == 14 ? 3
                                 : (lead >> 3) == 30 ? 4 : 0;
    char32_t code = length == 1 ? lead : length == 2 ? lead & 0x1F : length == 3 ? lead & 0x0F
                                                                                : lead & 0x07;
    bool valid = length > 0 && i + length <= text.size();
    for (int k = 1; valid && k < length; ++k) {
      const unsigned char next = static_cast<unsigned char>(text[i + k]);
      valid = (next & 0xC0) == 0x80;
      code = (code << 6) | (next & 0x3F);
    }
    static const char32_t kMinimum[] = {0, 0, 0x80, 0x800, 0x10000};
    if (valid && (code < kMinimum[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))) {
      valid = false;
    }
    out += valid ? code : U'\uFFFD';
    i += valid ? length : 1;
  }
  return out;
}

std::string encodeUtf8(char32_t code) {
  std::string out;
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
  return out;
}

std::string codeName(char32_t code) {
  char buffer[16];
  std::snprintf(buffer, sizeof buffer, "U+%04X", static_cast<unsigned>(code));
  return buffer;
}

}  // namespace kelfont_tool
