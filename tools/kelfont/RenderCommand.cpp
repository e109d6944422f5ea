#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "common/font_info/FontInfo.h"
#include "common/font_info/FontMetrics.h"
#include "common/manager/FontManager.h"
#include "common/registry/FontTable.h"
#include "tools/kelfont/ArgParser.h"
#include "tools/kelfont/Commands.h"
#include "tools/kelfont/ManagerSession.h"
#include "tools/kelfont/SvgPath.h"
#include "tools/kelfont/TextFormat.h"
#include "tools/kelfont/TextMeasure.h"
#include "tools/kelfont/ToolFontManager.h"

#if KELFONT_HARFBUZZ
#include <hb.h>
#endif

namespace kelfont_tool {

namespace {

// Outlines come at 2048 units per em; the drawing is made in those units
// and scaled by the SVG's width and height.
constexpr float kUnits = 2048;

std::string xmlText(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (static_cast<unsigned char>(c) >= 0x20) {
      out += c;
    }
  }
  return out;
}

// The drawing: glyphs at the measured advances, a box where a font has
// no outline to give (a face known by metrics only).
struct Drawing {
  std::string body;
  int glyphs = 0;
  int boxes = 0;
};

Drawing draw(ToolFontManager& manager, const TextMeasure& measure, float margin, float baseline) {
  Drawing drawing;
  std::ostringstream body;
  float pen = margin;
  for (const MeasuredChar& c : measure.chars) {
    pen += c.kerningRatio * kUnits;
    const float advance = c.ratio * kUnits;
    const qro_common::FontInfo* info =
        manager.ResolveSystemFontInfo(c.shownFont, measure.bold, measure.italic);
    SvgPath path;
    float x = pen;
    float y = baseline;
    if (info != nullptr && manager.OutlineToPath(info, c.shownCode, x, y, &path) == 0) {
      if (!path.Data().empty()) {
        body << "  <path d=\"" << path.Data() << "\"><title>" << xmlText(encodeUtf8(c.code))
             << ' ' << codeName(c.code) << "</title></path>\n";
      }
      ++drawing.glyphs;
    } else if (advance > 0) {
      body << "  <rect x=\"" << fixed(pen + advance * 0.1f, 1) << "\" y=\""
           << fixed(baseline - kUnits * 0.7f, 1) << "\" width=\"" << fixed(advance * 0.8f, 1)
           << "\" height=\"" << fixed(kUnits * 0.7f, 1)
           << "\" fill=\"none\" stroke=\"#c00\" stroke-width=\"32\"/>\n";
      ++drawing.boxes;
    }
    pen += advance;
  }
  drawing.body = body.str();
  return drawing;
}

#if KELFONT_HARFBUZZ
// The shaped text: each sub-run of one font (as measured) shaped again by
// HarfBuzz in its font file at 2048 units per em, its glyphs drawn at their
// positions. False, with nothing drawn, when a font has no file to shape.
bool drawShaped(ToolFontManager& manager, const TextMeasure& measure, float margin, float baseline,
                Drawing& drawing) {
  std::u16string units;
  std::vector<std::size_t> starts;  // first unit of each character
  for (const MeasuredChar& c : measure.chars) {
    starts.push_back(units.size());
    if (c.code >= 0x10000 && c.code < 0x110000) {
      units += static_cast<char16_t>(0xD800 + ((c.code - 0x10000) >> 10));
      units += static_cast<char16_t>(0xDC00 + ((c.code - 0x10000) & 0x3FF));
    } else {
      units += static_cast<char16_t>(c.code < 0x10000 ? c.code : 0xFFFD);
    }
  }
  std::ostringstream body;
  float pen = margin;
  Drawing shaped;
  for (std::size_t begin = 0; begin < measure.chars.size();) {
    const int font = measure.chars[begin].shownFont;
    std::size_t end = begin + 1;
    while (end < measure.chars.size() && measure.chars[end].shownFont == font) ++end;
    const qro_common::FontInfo* info =
        manager.GetFontTable()->ResolveFontInfo(font, measure.bold, measure.italic, true);
    hb_blob_t* blob = info == nullptr || info->GetFilePath() == nullptr
                          ? nullptr
                          : hb_blob_create_from_file_or_fail(info->GetFilePath()->c_str());
    if (blob == nullptr) return false;
    hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(info->GetFreeTypeFaceIndex()));
    hb_font_t* hbFont = hb_font_create(face);
    hb_font_set_scale(hbFont, static_cast<int>(kUnits), static_cast<int>(kUnits));
    hb_buffer_t* buffer = hb_buffer_create();
    const std::size_t last = end < starts.size() ? starts[end] : units.size();
    hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t*>(units.data()),
                        static_cast<int>(units.size()), static_cast<unsigned>(starts[begin]),
                        static_cast<int>(last - starts[begin]));
    hb_buffer_guess_segment_properties(buffer);
    hb_shape(hbFont, buffer, nullptr, 0);
    unsigned count = 0;
    const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* positions = hb_buffer_get_glyph_positions(buffer, nullptr);
    for (unsigned g = 0; g < count; ++g) {
      SvgPath path;
      float x = pen + static_cast<float>(positions[g].x_offset);
      float y = baseline - static_cast<float>(positions[g].y_offset);
      if (manager.GlyphOutlineToPath(info, glyphs[g].codepoint, x, y, &path) == 0) {
        if (!path.Data().empty()) {
          body << "  <path d=\"" << path.Data() << "\"><title>glyph " << glyphs[g].codepoint
               << "</title></path>\n";
        }
        ++shaped.glyphs;
      }
      pen += static_cast<float>(positions[g].x_advance);
    }
    hb_buffer_destroy(buffer);
    hb_font_destroy(hbFont);
    hb_face_destroy(face);
    hb_blob_destroy(blob);
    begin = end;
  }
  shaped.body = body.str();
  drawing = shaped;
  return true;
}
#endif

}  // namespace

int RunRender(const std::vector<std::string>& args, Console& console) {
  ArgParser parser("render",
                   "Draws TEXT into an SVG file with the glyph outlines of the fonts that show\n"
                   "each character, the pen advancing by the measured advances and kerning.\n"
                   "A character whose font is known by metrics only is drawn as a red box.");
  ManagerSession::AddOptions(parser);
  addStyleOptions(parser);
  parser.AddValue("size", "PX", "font size in the SVG (default 48)");
  parser.AddValue("output", "FILE", "SVG file to write", "o");
  parser.AddFlag("shaped", "draw the glyphs as HarfBuzz shapes the measured clusters");
  parser.SetPositional("TEXT...", "the text (several arguments are joined by spaces)", 1, 0);
  parser.SetEpilog(
      "Exit status: 0 written, 1 a folder or package could not be read, the font is\n"
      "unknown or the file not written, 2 bad arguments.");
  if (int stop = parseArguments(parser, args, console); stop >= 0) return stop;
  if (!parser.Has("output")) {
    console.err << "kelfont render: missing -o FILE (see --help)\n";
    return kExitUsage;
  }
  double size = 48;
  if (parser.Has("size") && !parseSize(parser.Value("size"), size)) {
    console.err << "kelfont render: --size needs a number of pixels above 0, not '"
                << parser.Value("size") << "'\n";
    return kExitUsage;
  }
  std::string folder;
  if (!outputFolderExists(parser.Value("output"), folder)) {
    console.err << "kelfont render: output folder not found: " << folder << '\n';
    return kExitFailure;
  }
  std::string text;
  for (const std::string& part : parser.Positional()) text += (text.empty() ? "" : " ") + part;

  ManagerSession session;
  if (int status = session.Open(parser, "render", console)) return status;
  ToolFontManager& manager = session.Manager();
  const int font = session.ResolveFont(parser, "render", console);
  if (font < 0) return kExitFailure;
  const bool bold = parser.Has("bold");
  const bool italic = parser.Has("italic");
  const TextMeasure measure =
      parser.Has("shaped")
          ? TextMeasure::MeasureShaped(manager, font, decodeUtf8(text), bold, italic)
          : TextMeasure::Measure(manager, font, decodeUtf8(text), bold, italic);

  float ascent = kUnits * 0.9f;
  float descent = kUnits * 0.25f;
  if (const qro_common::FontMetrics* metrics = manager.ResolveFontMetrics(font)) {
    if (metrics->GetUnitsPerEm() > 0) {
      const float scale = kUnits / metrics->GetUnitsPerEm();
      ascent = std::max(ascent, metrics->GetAscender() * scale);
      descent = std::max(descent, -metrics->GetDescender() * scale);
    }
  }
  const float margin = kUnits / 8;
  const float width = static_cast<float>(measure.totalEm) * kUnits + 2 * margin;
  const float height = ascent + descent + 2 * margin;
  const float baseline = margin + ascent;
  Drawing drawing;
#if KELFONT_HARFBUZZ
  if (!measure.shaped || !drawShaped(manager, measure, margin, baseline, drawing)) {
    drawing = draw(manager, measure, margin, baseline);
  }
#else
  drawing = draw(manager, measure, margin, baseline);
#endif
  const double scale = size / kUnits;

  const std::string output = parser.Value("output");
  std::ofstream out(output, std::ios::binary | std::ios::trunc);
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << fixed(width * scale, 1)
      << "\" height=\"" << fixed(height * scale, 1) << "\" viewBox=\"0 0 " << fixed(width, 1)
      << ' ' << fixed(height, 1) << "\">\n"
      << " <title>" << xmlText(text) << " (" << xmlText(manager.GetFontName(font))
      << ")</title>\n"
      << " <rect width=\"100%\" height=\"100%\" fill=\"#fff\"/>\n"
      << " <line x1=\"0\" y1=\"" << fixed(baseline, 1) << "\" x2=\"" << fixed(width, 1)
      << "\" y2=\"" << fixed(baseline, 1) << "\" stroke=\"#9cf\" stroke-width=\"8\"/>\n"
      << " <g fill=\"#000\">\n"
      << drawing.body << " </g>\n</svg>\n";
  out.close();
  if (!out) {
    console.err << "kelfont render: cannot write " << output << '\n';
    return kExitFailure;
  }
  console.out << "wrote " << output << ": " << drawing.glyphs << " glyphs";
  if (drawing.boxes > 0) console.out << ", " << drawing.boxes << " boxes";
  console.out << ", " << fixed(measure.totalEm, 4) << " em = " << fixed(measure.totalEm * size, 1)
              << " px wide at " << fixed(size, 0) << " px\n";
  return kExitOk;
}

}  // namespace kelfont_tool
