#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <vector>

#include "base/NonCopyable.h"

namespace qro_base {

// Deletes objects that readers without a lock may still be looking at, once
// no reader can hold them any more.
//
// A reader brackets its look at shared objects with a ReadSection. A writer
// first unpublishes an object (an atomic exchange with sequentially
// consistent order, so that no reader entering afterwards can find it) and
// then hands it to Retire(). The deleter counts readers per generation, in
// two alternating sets of counters; a retired object is deleted after the
// generation has moved on twice, which it does only once every reader of the
// generation before has left. Nobody ever waits: when readers are still
// inside, retired objects simply stay until a later Retire() or Collect()
// finds the way clear.
//
// A section costs two atomic read-modify-writes on a counter that threads
// share only by chance (the counters are spread over cache lines by
// thread). Sections may nest. Retire() and Collect() may be called from
// readers, also inside their own section.
class DeferredDeleter : public NonCopyable {
 public:
  class ReadSection : public NonCopyable {
   public:
    explicit ReadSection(const DeferredDeleter& deleter) : counter_(deleter.Enter()) {}
    ~ReadSection() { counter_->fetch_sub(1, std::memory_order_release); }

   private:
    std::atomic<std::uint32_t>* counter_;
  };

  DeferredDeleter() = default;
  // Deletes everything still retired: no reader may be inside a section.
  ~DeferredDeleter();

  // Takes ownership of an unpublished object (null is ignored) and deletes
  // what can be deleted by now.
  template <typename T>
  void Retire(T* object) {
    if (object != nullptr) Retire(object, [](void* p) { delete static_cast<T*>(p); });
  }
  void Retire(void* object, void (*destroy)(void*));
  // Deletes what no reader can hold any more.
  void Collect();
  // Deletes everything retired: only when no reader can be inside a section.
  void CollectAll();
  // Objects retired and not yet deleted.
  std::size_t PendingCount() const;

 private:
  static constexpr unsigned kStripes = 16;
  struct alignas(64) Counter {
    std::atomic<std::uint32_t> readers{0};
  };
  struct Retired {
    void* object;
    void (*destroy)(void*);
  };

  // Registers the calling thread's reader in the current generation; the
  // counter to decrement on leaving.
  std::atomic<std::uint32_t>* Enter() const {
    const unsigned stripe = StripeOfThisThread();
    for (;;) {
      const std::uint64_t generation = generation_.load(std::memory_order_seq_cst);
      std::atomic<std::uint32_t>& counter = counters_[generation & 1][stripe].readers;
      counter.fetch_add(1, std::memory_order_seq_cst);
      // Counted in the generation that is still current: a writer that
      // moves on from here on sees this reader.
      if (generation_.load(std::memory_order_seq_cst) == generation) return &counter;
      counter.fetch_sub(1, std::memory_order_release);
    }
  }
  // Threads spread over the counters by where their stacks lie (stacks of
  // threads are megabytes apart); two threads sharing a counter are still
  // counted correctly, only a little slower.
  static unsigned StripeOfThisThread() {
    const auto stack = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    return static_cast<unsigned>(((stack >> 20) * 0x9E3779B97F4A7C15ull) >> 60) % kStripes;
  }
  // Moves to the next generation when the readers of the one before have
  // left; the objects that became free, to delete outside the lock.
  std::vector<Retired> AdvanceLocked();
  static void Destroy(std::vector<Retired>& objects);

  mutable Counter counters_[2][kStripes];
  std::atomic<std::uint64_t> generation_{0};
  mutable std::mutex mutex_;
  // Retired in an even and an odd generation; guarded by mutex_.
  std::vector<Retired> retired_[2];
};

}  // namespace qro_base
