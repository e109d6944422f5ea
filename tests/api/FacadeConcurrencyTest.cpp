// Eight threads ask the facade everything at once through the entry points,
// over more faces than stay loaded, while another thread keeps clearing the
// loaded data (run under ThreadSanitizer and AddressSanitizer in CI). Every
// answer must be the one a single thread gets from a facade of its own.

#include <gtest/gtest.h>

#include <array>

#include "api/KelFontWidth.h"
#include "api/kelfont.h"
#include "common/registry/FontTable.h"
#include "tests/api/FacadeCache.h"
#include "tests/support/Concurrently.h"
#include "tests/support/TempDir.h"

namespace {

using namespace facade_test;

enum class Kind { kAdvance, kKerning, kEmSquare };

struct Query {
  Kind kind;
  int font;
  int ch;
  bool bold;
  bool italic;
};

using Answer = std::array<int, 2>;  // status, value

// Asks `facade`, or the entry points when it is null.
Answer ask(CKelFontWidth* facade, const Query& q) {
  int value = -12345;
  int status = 0;
  switch (q.kind) {
    case Kind::kAdvance:
      status = facade ? facade->GetFontCharInfo(q.font, q.ch, q.bold, q.italic, value)
                      : GetFontCharInfo(q.font, q.ch, q.bold, q.italic, value);
      break;
    case Kind::kKerning:
      status = facade ? facade->GetKerningInfo(q.font, q.bold, q.italic, q.ch, 'V', value)
                      : GetKerningInfo(q.font, q.bold, q.italic, q.ch, 'V', value);
      break;
    case Kind::kEmSquare:
      status = facade ? facade->GetFontEmSquareFUnit(q.font, q.bold, q.italic, value)
                      : GetFontEmSquareFUnit(q.font, q.bold, q.italic, value);
      break;
  }
  return {status, value};
}

void start(CKelFontWidth& facade, const std::string& base) {
  facade.SetExtractPath(base.c_str());
  ASSERT_EQ(facade.InitFontInfoSerializer(), 0);
  ASSERT_EQ(facade.InitFontTable(), 0);
  facade.InitializeAdvanceRatioAdjustFontSet();
}

TEST(FacadeConcurrency, EightThreadsAnswerAsOneWhileFacesAreDroppedAndReloaded) {
  kelfont_test::TempDir dir;
  const std::string base = dir.path() + "/";
  std::vector<Face> faces = standardFaces();
  for (int i = 0; i < 40; ++i) {
    Face face = evictFace(i);
    face.fontName = "KelTest Crowd " + std::to_string(i);
    face.kerning = {{'A', 'V', static_cast<short>(-1 - i)}};
    faces.push_back(face);
  }
  ASSERT_TRUE(writeCache(base, faces));

  CKelFontWidth reference;
  start(reference, base);
  testing::internal::CaptureStdout();  // the facade's start-up line
  ASSERT_EQ(InitKelFont("", base.c_str(), ""), 0);
  testing::internal::GetCapturedStdout();
  const int fontCount = gKelFontWidth->_GetFontTable()->GetFontCount();
  ASSERT_GT(fontCount, int(CKelFontWidth::kMaxLoadedBeforeEviction) + 20);

  std::vector<Query> queries;
  for (int font = -1; font <= fontCount; ++font) {
    for (int style = 0; style < 4; ++style) {
      const bool bold = style & 2, italic = style & 1;
      for (int ch : {int('A'), int('B'), int('C'), int('Z'), 0x21, 0x25, 0x30, 0xAC00, 0x1F600}) {
        queries.push_back({Kind::kAdvance, font, ch, bold, italic});
      }
      queries.push_back({Kind::kKerning, font, 'A', bold, italic});
      queries.push_back({Kind::kEmSquare, font, 0, bold, italic});
    }
  }
  std::vector<Answer> expected;
  for (const Query& q : queries) expected.push_back(ask(&reference, q));

  auto same = [&](std::size_t i) { return ask(nullptr, queries[i]) == expected[i]; };
  EXPECT_EQ(kelfont_test::askedAtOnce(queries.size(), 3, same, [] { ClearKelFontCacheInfo(); }), 0);
  // The answers depend on the data files: a crowd font's kerning and advance.
  EXPECT_EQ(ask(nullptr, {Kind::kKerning, fontCount - 1, 'A', false, false}), (Answer{0, -40}));
  EXPECT_EQ(ask(nullptr, {Kind::kAdvance, fontCount - 1, 'B', false, false}), (Answer{0, 239}));
  qro_base::DeferredDeleter& retired = gKelFontWidth->_GetFontTable()->GetDeferredDeleter();
  retired.Collect();
  retired.Collect();
  EXPECT_EQ(retired.PendingCount(), 0u);
  UnInitKelFont();
}

}  // namespace
