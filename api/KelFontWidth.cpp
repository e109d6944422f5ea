#include "api/KelFontWidth.h"

#include <limits>
#include <new>

#include "base/KeepForProcess.h"
#include "common/analysis/FontFileAnalyzer.h"
#include "common/analysis/GposKerning.h"
#include "common/font_info/CharMetricsInfo.h"
#include "common/font_info/FontInfo.h"
#include "common/font_info/FontInfoSerializer.h"
#include "common/font_info/KerningInfo.h"
#include "common/registry/FontTable.h"

using qro_common::CharKey;
using qro_common::CharMetrics;
using qro_common::CharMetricsInfo;
using qro_common::FontInfo;
using qro_common::FontInfoSerializer;
using qro_common::FontKey;
using qro_common::FontTable;
using qro_common::KerningInfo;

namespace {

// The fonts whose bold advances are corrected (UTF-8).
const char* const kAdjustFontNames[] = {"굴림",      "돋움",     "바탕",       "궁서",
                                        "다래바탕",  "다래돋움", "새굴림",     "휴먼고딕",
                                        "휴먼모음T", "휴먼옛체", "휴먼매직체", "한양해서"};

// Tables and serializers the facade creates live as long as the process:
// after a later start-up the facade's caches still point into the table it
// replaced.
using qro_base::keepForProcess;

// One row of the bold correction: advances in (above, upTo] lose
// `correction`. Rows are tested in this order, so the bands come before the
// open-ended rows.
struct BoldCorrection {
  float above;
  float upTo;
  float correction;
};
constexpr float kAny = -std::numeric_limits<float>::infinity();
const BoldCorrection kBoldCorrections[] = {
    {1000, 1050, 19}, {538, 588, 10},  {588, 640, 11},  {640, 690, 12},
    {690, 750, 13},   {750, 800, 14},  {kAny, 280, 4},  {kAny, 330, 5},
    {kAny, 385, 6},   {kAny, 433, 7},  {kAny, 488, 8},  {kAny, 538, 9},
    {kAny, 850, 15},  {kAny, 900, 16}, {kAny, 950, 17}, {kAny, 1000, 18}};

std::string pathOrEmpty(const char* path) { return path == nullptr ? std::string() : path; }

}  // namespace

CKelFontWidth::CKelFontWidth() = default;

CKelFontWidth::~CKelFontWidth() = default;

void CKelFontWidth::SetQrfontZipPath(const char* path) { programPath_ = pathOrEmpty(path); }

void CKelFontWidth::SetExtractPath(const char* path) { extractPath_ = pathOrEmpty(path); }

void CKelFontWidth::SetFontPath(const char* path) { fontPathList_.push_back(pathOrEmpty(path)); }

int CKelFontWidth::InitFontInfoSerializer() {
  // Making the serializer cannot fail for want of storage: a path that is
  // empty or cannot hold the cache gives an empty table, and a later
  // start-up on a good path reads that path's cache.
  FontInfoSerializer* serializer = nullptr;
  try {
    serializer = new FontInfoSerializer(extractPath_);
  } catch (const std::bad_alloc&) {
    return -2;
  }
  keepForProcess(serializer);
  serializer_ = serializer;
  return 0;
}

int CKelFontWidth::InitFontTable() {
  if (serializer_ == nullptr) return -3;
  FontTable* table = nullptr;
  try {
    table = new FontTable();
  } catch (const std::bad_alloc&) {
    return -3;
  }
  keepForProcess(table);
  fontTable_ = table;
  // A missing or damaged cache leaves the table empty; every query then
  // answers -1.
  fontTable_->LoadFontInfo(*serializer_);
  return 0;
}

void CKelFontWidth::InitializeAdvanceRatioAdjustFontSet() {
  for (const char* name : kAdjustFontNames) adjustFontSet_.insert(GetFontIndex(name));
}

int CKelFontWidth::GetFontIndex(const char* fontName) {
  if (fontTable_ == nullptr || fontName == nullptr) return -1;
  return fontTable_->GetFontIndex(fontName);
}

float CKelFontWidth::AdjustAdvanceRatio(int fontIndex, float x) {
  if (adjustFontSet_.find(fontIndex) == adjustFontSet_.end()) return x;
  for (const BoldCorrection& row : kBoldCorrections) {
    if (x > row.above && x <= row.upTo) return x - row.correction;
  }
  return x - 20;  // above 1050: only one more than the band below
}

FontInfo* CKelFontWidth::_GetFontInfo(int fontIndex, const bool& bold, const bool& italic) {
  const CharKey key = FontKey{fontIndex, bold, italic}.AsCharKey();
  FontInfo* info;
  if (fontInfoCache_.Find(key, info)) return info;
  if (fontTable_ == nullptr) return nullptr;
  info = fontTable_->GetFontInfo(fontIndex, bold, italic, true);
  if (info != nullptr) fontInfoCache_.Insert(key, info);
  return info;
}

CharMetricsInfo* CKelFontWidth::LoadCharMetrics(FontInfo& info) {
  std::lock_guard<std::mutex> lock(loadMutex_);
  if (CharMetricsInfo* loaded = info.GetCharMetricsInfo()) return loaded;
  if (loaded_.size() > kMaxLoadedBeforeEviction) {
    FontInfo* oldest = loaded_.front();
    oldest->SetCharMetricsInfo(nullptr);
    oldest->SetKerningInfo(nullptr);
    loaded_.pop_front();
  }
  if (serializer_ == nullptr || !serializer_->ReadData(info)) return nullptr;
  // A data file with kerning only: the face has no advances at all.
  if (info.GetCharMetricsInfo() == nullptr) info.SetCharMetricsInfo(new CharMetricsInfo());
  loaded_.push_back(&info);
  return info.GetCharMetricsInfo();
}

int CKelFontWidth::GetFontCharInfo(int fontIndex, int ch, const bool& bold, const bool& italic,
                                   int& advance) {
  if (fontTable_ == nullptr || fontIndex >= fontTable_->GetFontCount()) return -1;
  // An answered key always has its face remembered, so the advance cache
  // can be asked before the face is looked up.
  const CharKey key{static_cast<std::uint32_t>(ch), fontIndex, bold, italic};
  if (resultCache_.Find(key, advance)) return 0;
  return UncachedFontCharInfo(key, advance);
}

__attribute__((noinline)) int CKelFontWidth::UncachedFontCharInfo(const CharKey& key,
                                                                  int& advance) {
  const int fontIndex = key.fontIndex;
  const bool bold = key.bold;
  FontInfo* info = _GetFontInfo(fontIndex, bold, key.italic);
  if (info == nullptr) return -4;
  qro_base::DeferredDeleter::ReadSection section(fontTable_->GetDeferredDeleter());
  const CharMetricsInfo* table = info->GetCharMetricsInfo();
  if (table == nullptr && (table = LoadCharMetrics(*info)) == nullptr) return -5;
  const CharMetrics* metrics = table->GetCharMetrics(key.code);
  if (metrics == nullptr) {
    advance = 0;
    return -6;
  }
  int value = metrics->GetAdvance();
  if (bold) value = static_cast<int>(AdjustAdvanceRatio(fontIndex, static_cast<float>(value)));
  resultCache_.Insert(key, value);
  advance = value;
  return 0;
}

int CKelFontWidth::GetKerningInfo(int fontIndex, const bool& bold, const bool& italic, int first,
                                  int second, int& delta) {
  if (fontTable_ == nullptr || fontIndex >= fontTable_->GetFontCount()) return -1;
  FontInfo* info = _GetFontInfo(fontIndex, bold, italic);
  if (info == nullptr) return -4;
  qro_base::DeferredDeleter::ReadSection section(fontTable_->GetDeferredDeleter());
  const KerningInfo* kerning = info->GetKerningInfo();
  if (kerning == nullptr) {
    std::lock_guard<std::mutex> lock(loadMutex_);
    if (info->GetKerningInfo() == nullptr) {
      if (serializer_ == nullptr || !serializer_->ReadData(*info)) return -5;
      // A data file without kerning: the pairs a scan leaves to first use
      // are read from the font file (nothing is written), and a face with
      // none keeps an empty table rather than being read again per pair.
      if (info->GetKerningInfo() == nullptr) {
        KerningInfo* read = qro_common::hasGposKerning()
                                ? qro_common::FontFileAnalyzer::ReadKerningOnFirstUse(*info)
                                : nullptr;
        info->SetKerningInfo(read != nullptr ? read : new KerningInfo());
      }
    }
    kerning = info->GetKerningInfo();
  }
  delta = kerning->GetDelta(first, second);
  return 0;
}

int CKelFontWidth::GetFontEmSquareFUnit(int fontIndex, const bool& bold, const bool& italic,
                                        int& emSquare) {
  if (fontTable_ == nullptr || fontIndex >= fontTable_->GetFontCount()) return -1;
  const FontInfo* info = _GetFontInfo(fontIndex, bold, italic);
  if (info == nullptr) return -4;
  if (info->GetFontMetrics() == nullptr) return -7;
  emSquare = info->GetFontMetrics()->GetUnitsPerEm();
  return 0;
}

void CKelFontWidth::ClearKelFontCacheInfo() {
  if (fontTable_ == nullptr) return;
  std::lock_guard<std::mutex> lock(loadMutex_);
  fontTable_->ClearCacheInfo();
}
