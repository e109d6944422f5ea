// Objects retired while lock-free readers may hold them are deleted only
// once no reader can: never under a reader's feet, and not later than two
// collections after the last reader that could have seen them left.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "base/DeferredDeleter.h"

namespace {

using qro_base::DeferredDeleter;

struct Counted {
  static std::atomic<int> alive;
  explicit Counted(int v) : value(v) { ++alive; }
  ~Counted() {
    value = -1;
    --alive;
  }
  int value;
};
std::atomic<int> Counted::alive{0};

TEST(DeferredDeleter, AReaderKeepsWhatItMayHoldAndOnlyThat) {
  {
    DeferredDeleter deleter;
    deleter.Retire(new Counted(1));
    EXPECT_EQ(deleter.PendingCount(), 1u);
    deleter.Collect();  // no reader: freed after the second generation change
    EXPECT_EQ(deleter.PendingCount(), 0u);
    EXPECT_EQ(Counted::alive.load(), 0);

    {
      DeferredDeleter::ReadSection reader(deleter);
      deleter.Retire(new Counted(2));
      for (int i = 0; i < 5; ++i) deleter.Collect();
      EXPECT_EQ(Counted::alive.load(), 1);  // the reader may still hold it
      {
        // Sections nest; one entered after the retirement blocks nothing
        // more.
        DeferredDeleter::ReadSection inner(deleter);
        deleter.Collect();
        EXPECT_EQ(Counted::alive.load(), 1);
      }
    }
    deleter.Collect();
    deleter.Collect();
    EXPECT_EQ(Counted::alive.load(), 0);

    // A reader that entered after a retirement does not hold it back.
    deleter.Retire(new Counted(3));
    DeferredDeleter::ReadSection late(deleter);
    deleter.Collect();
    EXPECT_EQ(Counted::alive.load(), 0);
    deleter.Retire(new Counted(4));
    deleter.Retire<Counted>(nullptr);
    EXPECT_EQ(deleter.PendingCount(), 1u);
  }
  // The destructor deletes what is left.
  EXPECT_EQ(Counted::alive.load(), 0);
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
