#include "base/Environment.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using qro_base::Environment;
using qro_base::Locale;

// Counts its own destructions so that ownership can be observed.
template <typename Interface>
class Counted : public Interface {
 public:
  explicit Counted(int& destroyed) : destroyed_(destroyed) {}
  ~Counted() override { ++destroyed_; }

 private:
  int& destroyed_;
};

class CountedConverter : public qro_base::ICharsetConverter {
 public:
  explicit CountedConverter(int& destroyed) : destroyed_(destroyed) {}
  ~CountedConverter() override { ++destroyed_; }
  unsigned Convert(const char*, unsigned, unsigned short*, unsigned, bool, unsigned& produced) override {
    produced = 0;
    return 0;
  }

 private:
  int& destroyed_;
};

class CountedConverterManager : public qro_base::CharsetConverterManager {
 public:
  explicit CountedConverterManager(int& destroyed) : destroyed_(destroyed) {}
  ~CountedConverterManager() override { ++destroyed_; }
  qro_base::ICharsetConverter* GetConverter(unsigned) override { return nullptr; }

 private:
  int& destroyed_;
};

void expectEnUs(const Locale& locale) {
  EXPECT_EQ(locale.GetLanguage(), "en");
  EXPECT_EQ(locale.GetCountry(), "US");
}

TEST(EnvironmentDefaults, FreshInstance) {
  Environment env;
  expectEnUs(env.GetSystemLocale());
  expectEnUs(env.GetApplicationLocale());
  expectEnUs(env.GetUILocale());
  EXPECT_EQ(env.GetScreenResolution(), 97);
  EXPECT_EQ(env.GetDefaultDPI(), 97);
  EXPECT_EQ(env.GetOSType(), 0);
  EXPECT_EQ(env.GetFileStoragePath(), nullptr);
  EXPECT_EQ(env.GetConstantFileStoragePath(), nullptr);
  EXPECT_EQ(env.GetUserFontFileStoragePath(), nullptr);
  EXPECT_EQ(env.GetClipboardPath(), nullptr);
  EXPECT_EQ(env.GetApplicationName(), nullptr);
  EXPECT_EQ(env.GetResourceLoader(), nullptr);
  EXPECT_EQ(env.GetCharacterAttributes(), nullptr);
  EXPECT_EQ(env.GetCharsetConverterManager(), nullptr);
  EXPECT_EQ(env.GetCharsetConverter(), nullptr);
  EXPECT_EQ(env.GetNumberFormatter(), nullptr);
  EXPECT_EQ(env.GetDateFormatter(), nullptr);
  EXPECT_EQ(env.GetCalendarFactory(), nullptr);
  EXPECT_EQ(env.GetBreakIterator(), nullptr);
  EXPECT_EQ(env.GetMemoryChecker(), nullptr);
  EXPECT_FALSE(env.GetSupportBidi());
  EXPECT_FALSE(env.IsSupportRealtimeFloatingShape());
  EXPECT_EQ(env.GetInputLanguage(), "");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0);
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);
}

TEST(EnvironmentDefaults, GlobalInstanceIsCreatedOnceOnDemand) {
  Environment& first = qro_base::ensureEnvironment();
  EXPECT_EQ(qro_base::Global::pInstance, &first);
  EXPECT_EQ(&qro_base::ensureEnvironment(), &first);
}

// Installs two objects through one setter and checks that the first is
// destroyed on replacement, the second with the environment.
template <typename Object, typename Get, typename Set>
void checkOwnedSetter(Get get, Set set) {
  int destroyed = 0;
  {
    Environment env;
    auto* first = new Object(destroyed);
    (env.*set)(first);
    EXPECT_EQ((env.*get)(), first);
    EXPECT_EQ(destroyed, 0);
    auto* second = new Object(destroyed);
    (env.*set)(second);
    EXPECT_EQ((env.*get)(), second);
    EXPECT_EQ(destroyed, 1);
  }
  EXPECT_EQ(destroyed, 2);
  destroyed = 0;
  {
    Environment env;
    (env.*set)(new Object(destroyed));
    (env.*set)(nullptr);
    EXPECT_EQ((env.*get)(), nullptr);
    EXPECT_EQ(destroyed, 1);
  }
  EXPECT_EQ(destroyed, 1);
}

TEST(EnvironmentOwnership, ServiceSettersDestroyTheObjectTheyReplace) {
  using namespace qro_base;
  checkOwnedSetter<Counted<IResourceLoader>>(&Environment::GetResourceLoader,
                                             &Environment::SetResourceLoader);
  checkOwnedSetter<Counted<ICharacterAttributes>>(&Environment::GetCharacterAttributes,
                                                  &Environment::SetCharacterAttributes);
  checkOwnedSetter<CountedConverterManager>(&Environment::GetCharsetConverterManager,
                                            &Environment::SetCharsetConverterManager);
  checkOwnedSetter<CountedConverter>(&Environment::GetCharsetConverter,
                                     &Environment::SetCharsetConverter);
  checkOwnedSetter<Counted<INumberFormatter>>(&Environment::GetNumberFormatter,
                                              &Environment::SetNumberFormatter);
  checkOwnedSetter<Counted<IDateFormatter>>(&Environment::GetDateFormatter,
                                            &Environment::SetDateFormatter);
  checkOwnedSetter<Counted<ICalendarFactory>>(&Environment::GetCalendarFactory,
                                              &Environment::SetCalendarFactory);
  checkOwnedSetter<Counted<IBreakIterator>>(&Environment::GetBreakIterator,
                                            &Environment::SetBreakIterator);
  checkOwnedSetter<Counted<IMemoryChecker>>(&Environment::GetMemoryChecker,
                                            &Environment::SetMemoryChecker);
}

TEST(EnvironmentOwnership, PathSettersTakeTheString) {
  Environment env;
  using Get = std::string* (Environment::*)() const;
  using Set = void (Environment::*)(std::string*);
  const struct {
    Get get;
    Set set;
  } slots[] = {
      {&Environment::GetFileStoragePath, &Environment::SetFileStoragePath},
      {&Environment::GetConstantFileStoragePath, &Environment::SetConstantFileStoragePath},
      {&Environment::GetUserFontFileStoragePath, &Environment::SetUserFontFileStoragePath},
      {&Environment::GetClipboardPath, &Environment::SetClipboardPath},
      {&Environment::GetApplicationName, &Environment::SetApplicationName},
  };
  for (const auto& slot : slots) {
    // The replaced string is freed (the leak checker of the sanitizer build
    // would report it otherwise); the last one goes with the environment.
    (env.*slot.set)(new std::string("/data/old/"));
    auto* path = new std::string("/data/user/0/app/files/");
    (env.*slot.set)(path);
    EXPECT_EQ((env.*slot.get)(), path);
    EXPECT_EQ(*(env.*slot.get)(), "/data/user/0/app/files/");
  }
  env.SetClipboardPath(nullptr);
  EXPECT_EQ(env.GetClipboardPath(), nullptr);
}

TEST(EnvironmentInputLanguage, NameWithItsDefaultCountry) {
  Environment env;
  env.SetInputLanguage("ko");
  EXPECT_EQ(env.GetInputLanguage(), "ko");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x0412);
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);

  env.SetInputLanguage("he");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x040D);
  EXPECT_TRUE(env.GetKeyboardLayoutInfo().rightToLeft);

  env.SetInputLanguage("ar");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x0401);
  EXPECT_TRUE(env.GetKeyboardLayoutInfo().rightToLeft);

  env.SetInputLanguage("de");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x0C07);
  env.SetInputLanguage("es");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x040A);
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);
}

TEST(EnvironmentInputLanguage, NameWithoutDefaultCountryHasNoCode) {
  Environment env;
  // No default country: the lookup is "fa-", which is no tag; the
  // direction still comes from the language.
  env.SetInputLanguage("fa");
  EXPECT_EQ(env.GetInputLanguage(), "fa");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0);
  EXPECT_TRUE(env.GetKeyboardLayoutInfo().rightToLeft);

  // A full tag is kept whole and has no default country either.
  env.SetInputLanguage("ko-KR");
  EXPECT_EQ(env.GetInputLanguage(), "ko-KR");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0);
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);
}

TEST(EnvironmentInputLanguage, EmptyNameClearsTheLayoutInfo) {
  Environment env;
  env.SetInputLanguage("ar");
  ASSERT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x0401);
  env.SetInputLanguage("");
  EXPECT_EQ(env.GetInputLanguage(), "");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0);
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);
}

TEST(EnvironmentInputLanguage, CodeKeepsTheLanguagePartOfItsTag) {
  Environment env;
  env.SetInputLanguageCode(0x0412);
  EXPECT_EQ(env.GetInputLanguage(), "ko");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x0412);
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);

  env.SetInputLanguageCode(0x0401);
  EXPECT_EQ(env.GetInputLanguage(), "ar");
  EXPECT_TRUE(env.GetKeyboardLayoutInfo().rightToLeft);

  env.SetInputLanguageCode(0x7C04);
  EXPECT_EQ(env.GetInputLanguage(), "zh");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0x7C04);

  env.SetInputLanguageCode(0x040A);
  EXPECT_EQ(env.GetInputLanguage(), "es");

  // Tags without "-" are kept whole.
  env.SetInputLanguageCode(0x0029);
  EXPECT_EQ(env.GetInputLanguage(), "fa");
  EXPECT_TRUE(env.GetKeyboardLayoutInfo().rightToLeft);
  env.SetInputLanguageCode(0x0466);
  EXPECT_EQ(env.GetInputLanguage(), "0466");
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);
}

TEST(EnvironmentInputLanguage, UnknownCodeKeepsTheLanguageAndClearsTheLayout) {
  Environment env;
  env.SetInputLanguageCode(0x0401);
  ASSERT_EQ(env.GetInputLanguage(), "ar");
  env.SetInputLanguageCode(0x1234);
  EXPECT_EQ(env.GetInputLanguage(), "ar");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0);
  EXPECT_FALSE(env.GetKeyboardLayoutInfo().rightToLeft);
  env.SetInputLanguageCode(0);
  EXPECT_EQ(env.GetInputLanguage(), "ar");
  EXPECT_EQ(env.GetKeyboardLayoutInfo().langCode, 0);
}

}  // namespace
