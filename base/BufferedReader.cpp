#include "base/BufferedReader.h"

#include <climits>

#include "base/Environment.h"

namespace qro_base {

BufferedReader::BufferedReader(InputStream* source, unsigned encoding, unsigned size)
    : BufferedInputStream(source, size) {
  if (!open_) return;
  CharsetConverterManager* manager = ensureEnvironment().GetCharsetConverterManager();
  converter_ = manager != nullptr ? manager->GetConverter(encoding) : nullptr;
  if (converter_ == nullptr) {
    open_ = false;
    return;
  }
  charsCapacity_ = size_ < 2 ? 2 : size_;
  chars_ = new unsigned short[charsCapacity_];
  ConvertBuffer(exhausted_);
}

BufferedReader::~BufferedReader() { delete[] chars_; }

bool BufferedReader::ConvertBuffer(bool last) {
  charsPos_ = charsEnd_ = 0;
  unsigned pending = Pending();
  unsigned produced = 0;
  unsigned consumed = converter_->Convert(pos_, pending, chars_, charsCapacity_, last, produced);
  // Units produced without consuming anything would come back forever.
  if (consumed == 0 || consumed > pending) return false;
  pos_ += consumed;
  charsEnd_ = produced > charsCapacity_ ? charsCapacity_ : produced;
  return true;
}

int BufferedReader::Read() {
  if (!open_) return -1;
  while (charsPos_ == charsEnd_) {
    if (Pending() > 0 && ConvertBuffer(exhausted_)) continue;
    if (Pending() < size_ && FillBuffer(Pending())) continue;
    // The source is exhausted (or the converter is stuck on a full buffer):
    // what is left is the last block.
    if (Pending() > 0 && ConvertBuffer(true)) continue;
    return -1;
  }
  return chars_[charsPos_++];
}

unsigned BufferedReader::Available() {
  if (!open_) return 0;
  unsigned long long total = BufferedInputStream::Available();
  total += charsEnd_ - charsPos_;
  return total > static_cast<unsigned>(INT_MAX) ? static_cast<unsigned>(INT_MAX)
                                                 : static_cast<unsigned>(total);
}

bool BufferedReader::Close() { return BufferedInputStream::Close(); }

}  // namespace qro_base
