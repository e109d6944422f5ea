// Objects retired while lock-free readers may hold them are deleted only
// once no reader can: never under a reader's feet, and not later than two
// collections after the last reader that could have seen them left.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "base/DeferredDeleter.h"
#include "tests/support/Cases.h"

namespace {

using qro_base::DeferredDeleter;

struct Counted {
  static inline std::atomic<int> alive{0};
  explicit Counted(int v) : value(v) { ++alive; }
  ~Counted() {
    value = -1;
    --alive;
  }
  int value;
};

// Scripts of calls on one deleter (tests/data/deferred_deletions.tsv), one
// character a call: r retires an object, 0 retires nothing, c collects,
// [ enters a read section and ] leaves the innermost; p answers how many
// are pending, a how many objects are alive, the others '.'. The deleter's
// destructor deletes what is left.
TEST(DeferredDeleter, Scripts) {
  kelfont_test::expectAnswers("deferred_deletions.tsv", [](const kelfont_test::Case& c) {
    std::string said;
    {
      DeferredDeleter deleter;
      std::vector<std::unique_ptr<DeferredDeleter::ReadSection>> sections;
      for (char op : c[0]) {
        if (op == 'r') deleter.Retire(new Counted(1));
        if (op == '0') deleter.Retire(nullptr, [](void* p) { delete static_cast<Counted*>(p); });
        if (op == 'c') deleter.Collect();
        if (op == '[') sections.push_back(std::make_unique<DeferredDeleter::ReadSection>(deleter));
        if (op == ']') sections.pop_back();
        said += op == 'p'   ? std::to_string(deleter.PendingCount())
                : op == 'a' ? std::to_string(Counted::alive.load())
                            : ".";
      }
    }
    return said + (Counted::alive.load() == 0 ? "" : " and objects left");
  });
}

// Readers keep reading the published object while a writer replaces it and
// retires the old one (run under AddressSanitizer and ThreadSanitizer): no
// reader ever sees a deleted object, and nothing leaks.
TEST(DeferredDeleterConcurrency, ReadersNeverSeeADeletedObject) {
  std::atomic<int> wrong{0};
  {
    DeferredDeleter deleter;
    std::atomic<Counted*> published{new Counted(0)};
    std::atomic<bool> done{false};
    std::vector<std::thread> readers;
    for (int t = 0; t < 6; ++t) {
      readers.emplace_back([&] {
        while (!done.load(std::memory_order_relaxed)) {
          DeferredDeleter::ReadSection section(deleter);
          const Counted* object = published.load(std::memory_order_seq_cst);
          for (int i = 0; i < 20; ++i) {
            if (object->value < 0) ++wrong;
          }
        }
      });
    }
    for (int i = 1; i <= 20000; ++i) {
      deleter.Retire(published.exchange(new Counted(i), std::memory_order_seq_cst));
    }
    // Readers that keep entering do not hold back what they cannot see:
    // once each has gone round, everything retired is freed.
    for (int i = 0; i < 2000 && deleter.PendingCount() != 0; ++i) {
      deleter.Collect();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_EQ(deleter.PendingCount(), 0u);
    done = true;
    for (std::thread& reader : readers) reader.join();
    delete published.load();
  }
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(Counted::alive.load(), 0);
}

}  // namespace
