// The fixed font-name sets and the bold correction of the advance-ratio
// adjust fonts.

#include "common/manager/FontManager.h"

namespace qro_common {

namespace {

// Fonts whose bold advances are narrowed by AdjustAdvanceRatio().
const char* const kAdvanceRatioAdjustFonts[] = {
    "굴림",     "굴림체", "돋움",     "돋움체",    "바탕",     "바탕체",     "궁서",    "다래바탕",
    "다래돋움", "새굴림", "휴먼고딕", "휴먼모음T", "휴먼옛체", "휴먼매직체", "한양해서"};

// clang-format off
const char* const kAdjustSpacingFonts[] = {
    "굴림", "굴림체", "궁서", "궁서체", "돋움", "돋움체", "바탕", "바탕체",
    "산돌고딕M_0805", "산돌명조M_0805", "산돌바른생활", "산돌별사탕", "산돌별헤는밤M_0805",
    "산돌스카이블루M_0805", "산돌청춘연가", "새굴림", "양재둘기체M", "양재블럭체", "양재샤넬체M",
    "양재인장체M", "한양해서", "다래돋움", "다래바탕", "휴먼고딕", "휴먼둥근헤드라인", "휴먼명조",
    "휴먼엑스포", "휴먼옛체", "HY강B", "HY강M", "HY견고딕", "HY견명조", "HY궁서", "HY궁서B",
    "HY그래픽", "HY그래픽M", "HY나무B", "HY나무L", "HY나무M", "HY동녘B", "HY동녘M",
    "HY목각파임B", "HY목판L", "HY바다L", "HY바다M", "HY백송B", "HY산B", "HY센스L", "HY수평선B",
    "HY수평선M", "HY신명조", "HY엽서L", "HY엽서M", "HY울릉도B", "HY울릉도M", "HY중고딕",
    "HY크리스탈M", "HY태백B", "HY헤드라인M"};
// clang-format on

// Fonts whose CJK flag is cleared when their information is built.
const char* const kCJKExceptFonts[] = {"Times New Roman"};

// Fonts of the adjust set whose 1024-unit advances become 1025.
const char* const kWidenedFonts[] = {"BatangChe", "GulimChe", "DotumChe"};

// One correction band: advances in (low, high] lose `delta`. Tested in
// this order; the first match wins.
struct Band {
  float low;
  float high;
  float delta;
};

constexpr float kBelowAll = -3.4e38f;

const Band kBands[] = {
    {1000, 1050, 19},     {540, 588, 10},       {588, 640, 11},       {640, 690, 12},
    {690, 750, 13},       {750, 800, 14},       {kBelowAll, 280, 4},  {kBelowAll, 330, 5},
    {kBelowAll, 385, 6},  {kBelowAll, 433, 7},  {kBelowAll, 488, 8},  {kBelowAll, 538, 9},
    {kBelowAll, 850, 15}, {kBelowAll, 900, 16}, {kBelowAll, 950, 17}, {kBelowAll, 1000, 18},
};
constexpr float kAboveBandsDelta = 20;

// Rebuilds `set` from the names (the set replaced whole, not added to).
template <std::size_t N>
void fillSet(const FontManager& manager, const char* const (&names)[N], std::set<int>& set) {
  std::set<int> indexes;
  for (const char* name : names) indexes.insert(manager.GetFontIndex(name));
  set.swap(indexes);
}

}  // namespace

void FontManager::InitializeAdvanceRatioAdjustFontSet() {
  fillSet(*this, kAdvanceRatioAdjustFonts, advanceRatioAdjustFontSet_);
}

void FontManager::InitializeAdjustSpacingFontSet() {
  fillSet(*this, kAdjustSpacingFonts, adjustSpacingFontSet_);
}

void FontManager::InitializeCJKExceptFontSet() {
  fillSet(*this, kCJKExceptFonts, cjkExceptFontSet_);
}

bool FontManager::IsAdjustSpacingFont(int fontIndex) const {
  return adjustSpacingFontSet_.count(fontIndex) != 0;
}

bool FontManager::IsCJKExceptFont(int fontIndex) const {
  return cjkExceptFontSet_.count(fontIndex) != 0;
}

float FontManager::AdjustAdvanceRatio(int fontIndex, float advance) const {
  if (advanceRatioAdjustFontSet_.count(fontIndex) == 0) return advance;
  if (advance == 1024.0f) {
    const std::string& name = GetFontName(fontIndex);
    for (const char* widened : kWidenedFonts) {
      if (name == widened) return 1025.0f;
    }
  }
  for (const Band& band : kBands) {
    if (band.low < advance && advance <= band.high) return advance - band.delta;
  }
  return advance - kAboveBandsDelta;
}

}  // namespace qro_common
