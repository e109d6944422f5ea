#include <cstdlib>
#include <sstream>

#include "common/manager/FontManager.h"
#include "tools/kelfont/ArgParser.h"
#include "tools/kelfont/Commands.h"
#include "tools/kelfont/ManagerSession.h"
#include "tools/kelfont/TextFormat.h"
#include "tools/kelfont/TextMeasure.h"
#include "tools/kelfont/ToolFontManager.h"

namespace kelfont_tool {

namespace {

std::string shownText(char32_t code) {
  if (code < 0x20 || code == 0x7F) return std::string();
  return encodeUtf8(code);
}

std::string styleName(bool bold, bool italic) {
  if (bold && italic) return "bold italic";
  if (bold) return "bold";
  return italic ? "italic" : "regular";
}

void printTable(ToolFontManager& manager, const std::string& text, const TextMeasure& measure,
                double size, std::ostream& out) {
  out << manager.GetFontName(measure.font) << " (font " << measure.font << "), "
      << styleName(measure.bold, measure.italic) << ", " << fixed(size, 0) << " px: \"" << text
      << "\"\n";
  out << padded("code", 9) << padded("char", 5) << padded("shown by", 28) << padded("ratio", 10)
      << padded("units", 11) << "kern\n";
  for (const MeasuredChar& c : measure.chars) {
    std::string shownBy = manager.GetFontName(c.shownFont);
    if (c.shownCode != static_cast<unsigned>(c.code)) shownBy += " " + codeName(c.shownCode);
    if (c.substituted) shownBy += " *";
    std::string units = c.units < 0 ? "-" : std::to_string(c.units);
    units = std::string(units.size() < 5 ? 5 - units.size() : 0, ' ') + units + "/" +
            std::to_string(c.unitsPerEm);
    if (!c.clusterStart) {
      out << padded(codeName(c.code), 9) << padded(shownText(c.code), 5) << "+\n";
      continue;
    }
    out << padded(codeName(c.code), 9) << padded(shownText(c.code), 5) << padded(shownBy, 28)
        << padded(fixed(c.ratio, 6), 10) << padded(units, 11);
    if (c.kerning != 0) out << c.kerning << " (" << fixed(c.kerningRatio, 4) << " em)";
    out << '\n';
  }
  out << "total " << fixed(measure.totalEm, 4) << " em = " << fixed(measure.totalEm * size, 2)
      << " px";
  for (const MeasuredChar& c : measure.chars) {
    if (c.substituted) {
      out << "   (* shown by a fallback font)";
      break;
    }
  }
  out << '\n';
}

void printJson(ToolFontManager& manager, const std::string& text, const TextMeasure& measure,
               double size, std::ostream& out) {
  out << "{\"text\": " << jsonString(text) << ", \"font\": {\"index\": " << measure.font
      << ", \"name\": " << jsonString(manager.GetFontName(measure.font))
      << "}, \"bold\": " << (measure.bold ? "true" : "false")
      << ", \"italic\": " << (measure.italic ? "true" : "false") << ", \"size\": "
      << exactFloat(size) << ",\n \"chars\": [";
  for (std::size_t i = 0; i < measure.chars.size(); ++i) {
    const MeasuredChar& c = measure.chars[i];
    out << (i == 0 ? "\n  " : ",\n  ") << "{\"code\": " << static_cast<unsigned>(c.code)
        << ", \"char\": " << jsonString(encodeUtf8(c.code)) << ", \"font\": " << c.shownFont
        << ", \"fontName\": " << jsonString(manager.GetFontName(c.shownFont))
        << ", \"shownCode\": " << c.shownCode
        << ", \"substituted\": " << (c.substituted ? "true" : "false")
        << ", \"ratio\": " << exactFloat(c.ratio) << ", \"units\": " << c.units
        << ", \"unitsPerEm\": " << c.unitsPerEm << ", \"kerning\": " << c.kerning
        << ", \"kerningRatio\": " << exactFloat(c.kerningRatio);
    if (measure.shaped) out << ", \"clusterStart\": " << (c.clusterStart ? "true" : "false");
    out << "}";
  }
  out << "],\n \"totalEm\": " << exactFloat(measure.totalEm)
      << ", \"totalPx\": " << exactFloat(measure.totalEm * size) << "}\n";
}

}  // namespace

// Parses a size in pixels: a positive number up to 10000.
bool parseSize(const std::string& text, double& size) {
  char* end = nullptr;
  size = std::strtod(text.c_str(), &end);
  return !text.empty() && end != nullptr && *end == '\0' && size > 0 && size <= 10000;
}

int RunMeasure(const std::vector<std::string>& args, Console& console) {
  ArgParser parser("measure",
                   "Measures TEXT the way a layout engine asks libkelfont: per character the\n"
                   "font and character that show it, the advance as a ratio of the em square\n"
                   "and in design units, the kerning with the previous character, and the\n"
                   "total width.");
  ManagerSession::AddOptions(parser);
  addStyleOptions(parser);
  parser.AddValue("size", "PX", "font size for the width in pixels (default 16)");
  parser.AddFlag("json", "print JSON for scripts");
  parser.AddFlag("shaped", "measure clusters as HarfBuzz shapes them (+: same cluster)");
  parser.SetPositional("TEXT...", "the text (several arguments are joined by spaces)", 1, 0);
  parser.SetEpilog(
      "Exit status: 0 measured, 1 a folder or package could not be read or the font\n"
      "is unknown, 2 bad arguments.\n\n"
      "Example:\n"
      "  kelfont measure --package build/qrfont.zip --fonts /usr/share/fonts/truetype/nanum \\\n"
      "                  --font NanumGothic \"Hello, 세계!\"");
  if (int stop = parseArguments(parser, args, console); stop >= 0) return stop;
  double size = 16;
  if (parser.Has("size") && !parseSize(parser.Value("size"), size)) {
    console.err << "kelfont measure: --size needs a number of pixels above 0, not '"
                << parser.Value("size") << "'\n";
    return kExitUsage;
  }
  std::string text;
  for (const std::string& part : parser.Positional()) text += (text.empty() ? "" : " ") + part;

  ManagerSession session;
  if (int status = session.Open(parser, "measure", console)) return status;
  const int font = session.ResolveFont(parser, "measure", console);
  if (font < 0) return kExitFailure;
  const TextMeasure measure =
      parser.Has("shaped") ? TextMeasure::MeasureShaped(session.Manager(), font, decodeUtf8(text),
                                                        parser.Has("bold"), parser.Has("italic"))
                           : TextMeasure::Measure(session.Manager(), font, decodeUtf8(text),
                                                  parser.Has("bold"), parser.Has("italic"));
  if (parser.Has("json")) {
    printJson(session.Manager(), text, measure, size, console.out);
  } else {
    printTable(session.Manager(), text, measure, size, console.out);
  }
  return kExitOk;
}

}  // namespace kelfont_tool
