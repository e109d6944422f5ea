#pragma once

namespace qro_base {

// Derive from this to forbid copying and assignment of a class that owns
// resources through raw pointers.
class NonCopyable {
 public:
  NonCopyable(const NonCopyable&) = delete;
  NonCopyable& operator=(const NonCopyable&) = delete;

 protected:
  NonCopyable() = default;
  ~NonCopyable() = default;
};

}  // namespace qro_base
