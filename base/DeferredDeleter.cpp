#include "base/DeferredDeleter.h"

namespace qro_base {

DeferredDeleter::~DeferredDeleter() { CollectAll(); }

void DeferredDeleter::Retire(void* object, void (*destroy)(void*)) {
  if (object == nullptr) return;
  std::vector<Retired> free;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    retired_[generation_.load(std::memory_order_relaxed) & 1].push_back({object, destroy});
    free = AdvanceLocked();
  }
  Destroy(free);
}

void DeferredDeleter::Collect() {
  std::vector<Retired> free;
  {
    std::lock_guard<std::mutex> lock(mutex_);
    free = AdvanceLocked();
  }
  Destroy(free);
}

std::vector<DeferredDeleter::Retired> DeferredDeleter::AdvanceLocked() {
  const std::uint64_t generation = generation_.load(std::memory_order_relaxed);
  // The counters of the generation before are those the next one reuses.
  const std::size_t previous = (generation + 1) & 1;
  if (retired_[0].empty() && retired_[1].empty()) return {};
  for (const Counter& counter : counters_[previous]) {
    if (counter.readers.load(std::memory_order_seq_cst) != 0) return {};
  }
  // Every reader that entered before the generation before ended has left,
  // so what was retired then is out of reach.
  std::vector<Retired> free;
  free.swap(retired_[previous]);
  generation_.store(generation + 1, std::memory_order_seq_cst);
  return free;
}

void DeferredDeleter::CollectAll() {
  std::vector<Retired> free[2];
  {
    std::lock_guard<std::mutex> lock(mutex_);
    free[0].swap(retired_[0]);
    free[1].swap(retired_[1]);
  }
  Destroy(free[0]);
  Destroy(free[1]);
}

std::size_t DeferredDeleter::PendingCount() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return retired_[0].size() + retired_[1].size();
}

void DeferredDeleter::Destroy(std::vector<Retired>& objects) {
  for (const Retired& retired : objects) retired.destroy(retired.object);
  objects.clear();
}

}  // namespace qro_base
