#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

#include <map>

namespace qro_common {

class FontInfo;

// Open FreeType faces of registered font files, keyed by info index, so that
// glyph look-ups need not reopen a file per query. At most kMaxFaces faces
// are open: when the pool is full, the face with the lowest info index is
// closed to make room (not the least recently used one). The pool owns its
// faces and its FreeType library; faces stay valid until evicted or until
// the pool is destroyed. The pool does not notice a reload of the font
// table, which may give an info index to another face.
class FontFacePool {
 public:
  static constexpr size_t kMaxFaces = 100;

  FontFacePool();
  virtual ~FontFacePool();
  FontFacePool(const FontFacePool&) = delete;
  FontFacePool& operator=(const FontFacePool&) = delete;

  // The open face of the info, opened on first request from the info's file
  // path and face index. Null when FreeType is not available, the info has
  // no file path or the file cannot be opened; a failure is not remembered,
  // the next request tries the file again.
  FT_Face GetFontFace(const FontInfo& info);

  // Number of open faces.
  size_t GetFaceCount() const { return faces_.size(); }
  // Whether a face is open for this info index.
  bool HasFace(int infoIndex) const { return faces_.count(infoIndex) != 0; }

 private:
  FT_Library library_ = nullptr;
  bool initialized_ = false;
  std::map<int, FT_Face> faces_;
};

}  // namespace qro_common
