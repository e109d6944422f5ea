#pragma once

namespace qro_base {

// Orders pointers by the objects they point to (with the objects'
// operator<), so that ordered containers keyed by pointers find records by
// value. Neither pointer may be null.
template <typename Pointer>
struct DereferenceLess {
  bool operator()(const Pointer& a, const Pointer& b) const { return *a < *b; }
};

}  // namespace qro_base
