#pragma once

namespace qro_base {

// Base of records that can hand out heap copies of themselves. Derived
// classes narrow the result type of Clone().
class Clonable {
 public:
  // A new copy on the heap; the caller owns it.
  virtual Clonable* Clone() const = 0;
  virtual ~Clonable() = default;

 protected:
  Clonable() = default;
  Clonable(const Clonable&) = default;
  Clonable& operator=(const Clonable&) = default;
};

}  // namespace qro_base
