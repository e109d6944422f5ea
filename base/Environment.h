#pragma once
// The process-wide settings of the base layer. The one instance lives behind
// Global::pInstance; users create it with the default constructor when the
// pointer is null (ensureEnvironment() does exactly that).

#include <string>

#include "base/CharsetConverter.h"
#include "base/Locale.h"
#include "base/Services.h"

namespace qro_base {

struct KeyboardLayoutInfo {
  int langCode = 0;
  bool rightToLeft = false;
};

class Environment {
 public:
  Environment();
  virtual ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  // Setters of owned objects destroy the object installed before.
  IResourceLoader* GetResourceLoader() const { return resourceLoader_; }
  void SetResourceLoader(IResourceLoader* value);
  ICharacterAttributes* GetCharacterAttributes() const { return characterAttributes_; }
  void SetCharacterAttributes(ICharacterAttributes* value);
  CharsetConverterManager* GetCharsetConverterManager() const { return converterManager_; }
  void SetCharsetConverterManager(CharsetConverterManager* value);
  ICharsetConverter* GetCharsetConverter() const { return converter_; }
  void SetCharsetConverter(ICharsetConverter* value);
  INumberFormatter* GetNumberFormatter() const { return numberFormatter_; }
  void SetNumberFormatter(INumberFormatter* value);
  IDateFormatter* GetDateFormatter() const { return dateFormatter_; }
  void SetDateFormatter(IDateFormatter* value);
  ICalendarFactory* GetCalendarFactory() const { return calendarFactory_; }
  void SetCalendarFactory(ICalendarFactory* value);
  IBreakIterator* GetBreakIterator() const { return breakIterator_; }
  void SetBreakIterator(IBreakIterator* value);
  IMemoryChecker* GetMemoryChecker() const { return memoryChecker_; }
  void SetMemoryChecker(IMemoryChecker* value);

  unsigned char GetOSType() const { return osType_; }
  void SetOSType(unsigned char value) { osType_ = value; }
  unsigned short GetScreenResolution() const { return screenResolution_; }
  void SetScreenResolution(unsigned short value) { screenResolution_ = value; }
  unsigned short GetDefaultDPI() const { return defaultDpi_; }

  // Paths and names: null until the host sets them; the setters take
  // ownership of the string.
  std::string* GetFileStoragePath() const { return fileStoragePath_; }
  void SetFileStoragePath(std::string* value);
  std::string* GetConstantFileStoragePath() const { return constantFileStoragePath_; }
  void SetConstantFileStoragePath(std::string* value);
  std::string* GetUserFontFileStoragePath() const { return userFontFileStoragePath_; }
  void SetUserFontFileStoragePath(std::string* value);
  std::string* GetClipboardPath() const { return clipboardPath_; }
  void SetClipboardPath(std::string* value);
  std::string* GetApplicationName() const { return applicationName_; }
  void SetApplicationName(std::string* value);

  const Locale& GetSystemLocale() const { return systemLocale_; }
  void SetSystemLocale(const Locale& value) { systemLocale_ = value; }
  const Locale& GetApplicationLocale() const { return applicationLocale_; }
  void SetApplicationLocale(const Locale& value) { applicationLocale_ = value; }
  const Locale& GetUILocale() const { return uiLocale_; }
  void SetUILocale(const Locale& value) { uiLocale_ = value; }

  bool GetSupportBidi() const { return supportBidi_; }
  void SetSupportBidi(bool value) { supportBidi_ = value; }
  bool IsSupportRealtimeFloatingShape() const { return realtimeFloatingShape_; }
  void SetSupportRealtimeFloatingShape(bool value) { realtimeFloatingShape_ = value; }

  // Keeps the whole name; the layout code comes from the name and its
  // default country.
  void SetInputLanguage(const std::string& name);
  // Keeps only the language part of the code's tag; an unknown code clears
  // the layout info and leaves the input language as it was.
  void SetInputLanguageCode(int code);
  const std::string& GetInputLanguage() const { return inputLanguage_; }
  const KeyboardLayoutInfo& GetKeyboardLayoutInfo() const { return keyboardLayoutInfo_; }

 private:
  IResourceLoader* resourceLoader_ = nullptr;
  ICharacterAttributes* characterAttributes_ = nullptr;
  CharsetConverterManager* converterManager_ = nullptr;
  ICharsetConverter* converter_ = nullptr;
  INumberFormatter* numberFormatter_ = nullptr;
  IDateFormatter* dateFormatter_ = nullptr;
  ICalendarFactory* calendarFactory_ = nullptr;
  IBreakIterator* breakIterator_ = nullptr;
  IMemoryChecker* memoryChecker_ = nullptr;
  unsigned char osType_ = 0;
  unsigned short screenResolution_ = 97;
  unsigned short defaultDpi_ = 97;
  unsigned short screenWidth_ = 1024;
  unsigned short screenHeight_ = 768;
  std::string* fileStoragePath_ = nullptr;
  std::string* constantFileStoragePath_ = nullptr;
  std::string* userFontFileStoragePath_ = nullptr;
  std::string* clipboardPath_ = nullptr;
  std::string* applicationName_ = nullptr;
  Locale systemLocale_;
  Locale applicationLocale_;
  Locale uiLocale_;
  bool supportBidi_ = false;
  bool realtimeFloatingShape_ = false;
  std::string inputLanguage_;
  KeyboardLayoutInfo keyboardLayoutInfo_;
};

class Global {
 public:
  static Environment* pInstance;
};

// Creates the instance on first use and returns it.
Environment& ensureEnvironment();

}  // namespace qro_base
