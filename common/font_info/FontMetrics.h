#pragma once

namespace qro_common {

// Global metrics of a face, in font design units. All zero until the
// analyzer fills them.
class FontMetrics {
 public:
  FontMetrics() = default;
  FontMetrics(short ascender, short descender, short lineGap, unsigned short unitsPerEm)
      : ascender_(ascender), descender_(descender), lineGap_(lineGap), unitsPerEm_(unitsPerEm) {}
  FontMetrics(const FontMetrics&) = default;
  FontMetrics& operator=(const FontMetrics&) = default;
  virtual ~FontMetrics() = default;

  short GetAscender() const { return ascender_; }
  // Negative below the baseline.
  short GetDescender() const { return descender_; }
  short GetLineGap() const { return lineGap_; }
  // 1024 when the font has no head table (set by the analyzer).
  unsigned short GetUnitsPerEm() const { return unitsPerEm_; }

  void SetAscender(short value) { ascender_ = value; }
  void SetDescender(short value) { descender_ = value; }
  void SetLineGap(short value) { lineGap_ = value; }
  void SetUnitsPerEm(unsigned short value) { unitsPerEm_ = value; }

 private:
  short ascender_ = 0;
  short descender_ = 0;
  short lineGap_ = 0;
  unsigned short unitsPerEm_ = 0;
};

}  // namespace qro_common
