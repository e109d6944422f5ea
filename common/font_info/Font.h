#pragma once

#include <string>

#include "base/Clonable.h"

namespace qro_common {

// One distinct font name of the font table, with the flags the table keeps
// for it. Fonts order by name, as byte strings.
class Font : public qro_base::Clonable {
 public:
  explicit Font(const std::string& name) : name_(name) {}
  Font(const Font&) = default;
  Font& operator=(const Font&) = default;

  Font* Clone() const override { return new Font(*this); }

  // Byte-wise lexicographic order of the names; a proper prefix first.
  bool operator<(const Font& other) const { return name_ < other.name_; }

  const std::string& GetName() const { return name_; }
  // A second string carried with the font; empty unless set.
  const std::string& GetSecondName() const { return secondName_; }
  void SetSecondName(const std::string& value) { secondName_ = value; }

  bool IsSymbol() const { return symbol_; }
  void SetSymbol(bool value) { symbol_ = value; }
  // True until a face of this font with a file path is registered.
  bool IsWithoutFile() const { return withoutFile_; }
  void SetWithoutFile(bool value) { withoutFile_ = value; }
  bool IsNonTimes() const { return nonTimes_; }
  void SetNonTimes(bool value) { nonTimes_ = value; }
  bool IsExtraBold() const { return extraBold_; }
  void SetExtraBold(bool value) { extraBold_ = value; }

 private:
  std::string name_;
  std::string secondName_;
  bool symbol_ = false;
  bool withoutFile_ = true;
  bool nonTimes_ = false;
  bool extraBold_ = false;
};

}  // namespace qro_common
