#include "common/registry/FontFacePool.h"

#include <string>

#include "common/analysis/FontFileStream.h"
#include "common/font_info/FontInfo.h"

namespace qro_common {

FontFacePool::FontFacePool() { initialized_ = FT_Init_FreeType(&library_) == 0; }

FontFacePool::~FontFacePool() {
  for (auto& entry : faces_) FT_Done_Face(entry.second);
  faces_.clear();
  if (initialized_) FT_Done_FreeType(library_);
}

FT_Face FontFacePool::GetFontFace(const FontInfo& info) {
  int key = info.GetInfoIndex();
  auto found = faces_.find(key);
  if (found != faces_.end()) return found->second;
  if (!initialized_ || info.GetFilePath() == nullptr) return nullptr;

  if (faces_.size() >= kMaxFaces) {
    auto lowest = faces_.begin();
    FT_Done_Face(lowest->second);
    faces_.erase(lowest);
  }
  FT_Face face = nullptr;
  if (FontFileStream::OpenFace(library_, info.GetFilePath()->c_str(), info.GetFreeTypeFaceIndex(),
                               &face) != 0) {
    return nullptr;
  }
  faces_.emplace(key, face);
  return face;
}

}  // namespace qro_common
