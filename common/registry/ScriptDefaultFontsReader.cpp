#include "common/registry/ScriptDefaultFontsReader.h"

#include <climits>

#include "base/BufferedInputStream.h"
#include "base/FileInputStream.h"
#include "base/FileUtils.h"
#include "common/registry/FontListLine.h"

namespace qro_common {
namespace {

// The value atoi() gives for a line, followed byte by byte: leading white
// space, an optional sign, then digits, saturating as strtol() does. Keeps
// a long line of digits linear instead of rescanning it per digit.
class LeadingNumber {
 public:
  void Add(char c) {
    bool digit = c >= '0' && c <= '9';
    switch (state_) {
      case kSpace:
        if (c == ' ' || c == '\t' || c == '\v' || c == '\f') return;
        if (c == '+' || c == '-') {
          negative_ = c == '-';
          state_ = kSign;
          return;
        }
        state_ = digit ? kDigits : kDone;
        break;
      case kSign:
        state_ = digit ? kDigits : kDone;
        break;
      case kDigits:
        if (!digit) state_ = kDone;
        break;
      case kDone:
        return;
    }
    if (state_ != kDigits) return;
    unsigned long limit = negative_ ? static_cast<unsigned long>(LONG_MAX) + 1 : LONG_MAX;
    unsigned long d = static_cast<unsigned long>(c - '0');
    magnitude_ = magnitude_ > (limit - d) / 10 ? limit : magnitude_ * 10 + d;
  }

  // As atoi(): strtol()'s value narrowed to int.
  int Value() const {
    long value;
    if (!negative_) {
      value = static_cast<long>(magnitude_);
    } else if (magnitude_ > static_cast<unsigned long>(LONG_MAX)) {
      value = LONG_MIN;
    } else {
      value = -static_cast<long>(magnitude_);
    }
    return static_cast<int>(value);
  }

  void Reset() { *this = LeadingNumber(); }

 private:
  enum State { kSpace, kSign, kDigits, kDone };
  State state_ = kSpace;
  bool negative_ = false;
  unsigned long magnitude_ = 0;
};

}  // namespace

ScriptDefaultFontsReader::ScriptDefaultFontsReader(std::string& path) : path_(path) {
  qro_base::confirmFilePathExists(path_.c_str());
  fonts_.reserve(kScriptCount);
  fonts_.assign(kScriptCount, -1);
}

bool ScriptDefaultFontsReader::IsFileExists() const {
  return qro_base::isFileExists(path_.c_str());
}

std::vector<int>* ScriptDefaultFontsReader::Read(FontTable& table) {
  auto* file = new qro_base::FileInputStream(path_);
  if (!file->IsOpen()) {
    delete file;
    return &fonts_;
  }
  qro_base::BufferedInputStream in(file, 32768);

  unsigned char script = 0;
  std::string line;
  LeadingNumber number;
  for (int byte = in.Read(); byte >= 0; byte = in.Read()) {
    if (byte == '\r') continue;
    if (byte != '\n') {
      line += static_cast<char>(byte);
      number.Add(static_cast<char>(byte));
      if (byte >= '0' && byte <= '9') script = static_cast<unsigned char>(number.Value());
      continue;
    }
    if (script < kScriptCount && fonts_[script] < 0 && !isBlankListLine(line) &&
        !isCommentListLine(line)) {
      fonts_[script] = availableFontIndex(table, line);
    }
    line.clear();
    number.Reset();
  }
  in.Close();
  return &fonts_;
}

}  // namespace qro_common
