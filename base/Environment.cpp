#include "base/Environment.h"

#include "common/analysis/LangCode.h"

namespace qro_base {

Environment* Global::pInstance = nullptr;

Environment& ensureEnvironment() {
  if (Global::pInstance == nullptr) Global::pInstance = new Environment();
  return *Global::pInstance;
}

namespace {

// The previous object is destroyed even when it is the new one: callers
// never install the same object twice.
template <typename T>
void replaceOwned(T*& slot, T* value) {
  delete slot;
  slot = value;
}

}  // namespace

Environment::Environment()
    : systemLocale_(Locale::ENGLISH), applicationLocale_(Locale::ENGLISH), uiLocale_(Locale::ENGLISH) {
  (void)screenWidth_;
  (void)screenHeight_;
}

Environment::~Environment() {
  delete resourceLoader_;
  delete characterAttributes_;
  delete converterManager_;
  delete converter_;
  delete numberFormatter_;
  delete dateFormatter_;
  delete calendarFactory_;
  delete breakIterator_;
  delete memoryChecker_;
  delete fileStoragePath_;
  delete constantFileStoragePath_;
  delete userFontFileStoragePath_;
  delete clipboardPath_;
  delete applicationName_;
}

void Environment::SetResourceLoader(IResourceLoader* value) { replaceOwned(resourceLoader_, value); }
void Environment::SetCharacterAttributes(ICharacterAttributes* value) {
  replaceOwned(characterAttributes_, value);
}
void Environment::SetCharsetConverterManager(CharsetConverterManager* value) {
  replaceOwned(converterManager_, value);
}
void Environment::SetCharsetConverter(ICharsetConverter* value) { replaceOwned(converter_, value); }
void Environment::SetNumberFormatter(INumberFormatter* value) { replaceOwned(numberFormatter_, value); }
void Environment::SetDateFormatter(IDateFormatter* value) { replaceOwned(dateFormatter_, value); }
void Environment::SetCalendarFactory(ICalendarFactory* value) { replaceOwned(calendarFactory_, value); }
void Environment::SetBreakIterator(IBreakIterator* value) { replaceOwned(breakIterator_, value); }
void Environment::SetMemoryChecker(IMemoryChecker* value) { replaceOwned(memoryChecker_, value); }

void Environment::SetFileStoragePath(std::string* value) { replaceOwned(fileStoragePath_, value); }
void Environment::SetConstantFileStoragePath(std::string* value) {
  replaceOwned(constantFileStoragePath_, value);
}
void Environment::SetUserFontFileStoragePath(std::string* value) {
  replaceOwned(userFontFileStoragePath_, value);
}
void Environment::SetClipboardPath(std::string* value) { replaceOwned(clipboardPath_, value); }
void Environment::SetApplicationName(std::string* value) { replaceOwned(applicationName_, value); }

void Environment::SetInputLanguage(const std::string& name) {
  inputLanguage_ = name;
  if (inputLanguage_.empty()) {
    keyboardLayoutInfo_ = KeyboardLayoutInfo();
    return;
  }
  Locale locale(inputLanguage_.c_str(), nullptr);
  keyboardLayoutInfo_.langCode =
      qro_common::LangCode::GetLangCode(inputLanguage_.c_str(), locale.GetCountry().c_str());
  keyboardLayoutInfo_.rightToLeft = locale.IsLanguageForRTL();
}

void Environment::SetInputLanguageCode(int code) {
  std::string tag = qro_common::LangCode::GetLang(static_cast<unsigned short>(code));
  if (tag.empty()) {
    keyboardLayoutInfo_ = KeyboardLayoutInfo();
    return;
  }
  inputLanguage_ = tag.substr(0, tag.find('-'));
  keyboardLayoutInfo_.langCode = code;
  keyboardLayoutInfo_.rightToLeft = Locale(inputLanguage_.c_str(), nullptr).IsLanguageForRTL();
}

}  // namespace qro_base
