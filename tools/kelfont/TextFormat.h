#pragma once

#include <string>

namespace kelfont_tool {

// Columns a UTF-8 text takes on a terminal: East Asian wide characters
// count two, combining marks none, everything else one.
std::size_t displayWidth(const std::string& text);
// `text` followed by spaces up to `width` columns (at least one space).
std::string padded(const std::string& text, std::size_t width);
// A JSON string literal.
std::string jsonString(const std::string& text);
// A float with enough digits to read back the same float ("%.9g").
std::string exactFloat(double value);
// printf("%.*f").
std::string fixed(double value, int decimals);

}  // namespace kelfont_tool
