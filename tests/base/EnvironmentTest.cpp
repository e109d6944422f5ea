#include "base/Environment.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using qro_base::Environment;

class CountedLoader : public qro_base::IResourceLoader {
 public:
  explicit CountedLoader(int& destroyed) : destroyed_(destroyed) {}
  ~CountedLoader() override { ++destroyed_; }

 private:
  int& destroyed_;
};

// Every service and path setter goes through one ownership rule: the
// replaced object is destroyed, the last one goes with the environment.
TEST(Environment, SettersDestroyTheObjectTheyReplace) {
  int destroyed = 0;
  {
    Environment env;
    env.SetResourceLoader(new CountedLoader(destroyed));
    auto* second = new CountedLoader(destroyed);
    env.SetResourceLoader(second);
    EXPECT_EQ(env.GetResourceLoader(), second);
    EXPECT_EQ(destroyed, 1);
    // The leak checker of the sanitizer build would report a lost string.
    env.SetClipboardPath(new std::string("/data/old/"));
    env.SetClipboardPath(new std::string("/data/new/"));
    EXPECT_EQ(*env.GetClipboardPath(), "/data/new/");
  }
  EXPECT_EQ(destroyed, 2);
  Environment env;
  env.SetResourceLoader(new CountedLoader(destroyed));
  env.SetResourceLoader(nullptr);
  EXPECT_EQ(destroyed, 3);
}

TEST(Environment, InputLanguageByName) {
  const struct {
    const char* name;
    int code;
    bool rightToLeft;
  } cases[] = {
      {"ko", 0x0412, false}, {"he", 0x040D, true}, {"de", 0x0C07, false}, {"es", 0x040A, false},
      // No default country ("fa-" is no tag); the direction still comes from
      // the language. A full tag is kept whole and has no default country.
      {"fa", 0, true},       {"ko-KR", 0, false},  {"", 0, false},
  };
  Environment env;
  env.SetInputLanguage("ar");
  for (const auto& c : cases) {
    env.SetInputLanguage(c.name);
    EXPECT_EQ(env.GetInputLanguage(), c.name);
    EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, c.code) << c.name;
    EXPECT_EQ(env.GetKeyboardLayoutInfo().rightToLeft, c.rightToLeft) << c.name;
  }
}

TEST(Environment, InputLanguageByCodeKeepsTheLanguagePartOfItsTag) {
  const struct {
    int code;
    const char* language;
    int layoutCode;
    bool rightToLeft;
  } cases[] = {
      {0x0412, "ko", 0x0412, false}, {0x0401, "ar", 0x0401, true}, {0x7C04, "zh", 0x7C04, false},
      // Tags without "-" are kept whole.
      {0x0029, "fa", 0x0029, true},  {0x0466, "0466", 0x0466, false},
      // Unknown codes keep the language and clear the layout.
      {0x1234, "0466", 0, false},    {0, "0466", 0, false},
  };
  Environment env;
  for (const auto& c : cases) {
    env.SetInputLanguageCode(c.code);
    EXPECT_EQ(env.GetInputLanguage(), c.language) << c.code;
    EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, c.layoutCode) << c.code;
    EXPECT_EQ(env.GetKeyboardLayoutInfo().rightToLeft, c.rightToLeft) << c.code;
  }
}

}  // namespace
