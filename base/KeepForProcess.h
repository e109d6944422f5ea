#pragma once
// Objects that the library creates on a caller's behalf but never destroys
// (nothing owns them by design, and other objects may still point at them)
// are kept reachable here for the life of the process rather than dropped.
// Only for start-up paths, which run on one thread.

#include <vector>

namespace qro_base {

template <typename T>
void keepForProcess(T* object) {
  static auto* kept = new std::vector<T*>();
  kept->push_back(object);
}

}  // namespace qro_base
