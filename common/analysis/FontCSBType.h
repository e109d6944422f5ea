#pragma once
// Counterpart of FontUSBType for OS/2 code-page bits (ulCodePageRange1..2).
// It only holds a table, zeroed at start-up, that no code reads or writes.

namespace qro_common {

class FontCSBType {
 public:
  static unsigned char CSB_TYPES[0x10000];

  FontCSBType() = default;
  virtual ~FontCSBType() = default;
};

}  // namespace qro_common
