#include "tools/kelfont/TextFormat.h"

#include <cstdio>

#include "tools/kelfont/ManagerSession.h"

namespace kelfont_tool {

namespace {

bool isWide(char32_t c) {
  return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF && c != 0x303F) ||
         (c >= 0xAC00 && c <= 0xD7A3) || (c >= 0xF900 && c <= 0xFAFF) ||
         (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
         (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1F64F) ||
         (c >= 0x20000 && c <= 0x3FFFD);
}

bool isZeroWidth(char32_t c) {
  return (c >= 0x0300 && c <= 0x036F) || (c >= 0x200B && c <= 0x200F) || c == 0xFEFF;
}

}  // namespace

std::size_t displayWidth(const std::string& text) {
  std::size_t width = 0;
  for (char32_t c : decodeUtf8(text)) width += isWide(c) ? 2 : isZeroWidth(c) ? 0 : 1;
  return width;
}

std::string padded(const std::string& text, std::size_t width) {
  const std::size_t used = displayWidth(text);
  return text + std::string(used < width ? width - used : 1, ' ');
}

std::string jsonString(const std::string& text) {
  std::string out = "\"";
  for (char c : text) {
    const unsigned char byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (byte < 0x20 || byte == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", byte);
      out += escape;
    } else {
      out += c;
    }
  }
  return out + "\"";
}

std::string exactFloat(double value) {
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%.9g", value);
  return buffer;
}

std::string fixed(double value, int decimals) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, "%.*f", decimals, value);
  return buffer;
}

}  // namespace kelfont_tool
