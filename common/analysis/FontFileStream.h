#pragma once

#include <ft2build.h>
#include FT_FREETYPE_H

namespace qro_common {

// Opens font faces through FreeType without letting FreeType map the font
// file into memory. A mapped font file that is truncated or rewritten while
// its face is open (a font replaced in the user font folder during a scan,
// or while its face waits in the face pool) makes the process fault on
// pages that no longer exist. Here a face reads the file through its
// descriptor, on demand, in small windows: the same change only makes reads
// come back short, FreeType reports an error (a face or a glyph that does
// not load) and the caller goes on. Only what FreeType asks for is read,
// and little memory is held.
class FontFileStream {
 public:
  // Like FT_New_Face(library, path, faceIndex, face). What the face reads
  // belongs to it and is released by FT_Done_Face (or when opening fails).
  static FT_Error OpenFace(FT_Library library, const char* path, FT_Long faceIndex, FT_Face* face);

 private:
  static unsigned long Read(FT_Stream stream, unsigned long offset, unsigned char* buffer,
                            unsigned long count);
  static void Close(FT_Stream stream);
};

}  // namespace qro_common
