#pragma once
// Eight threads ask everything at once, each in its own shuffled order,
// while another keeps clearing the loaded data every 2 ms (run under
// ThreadSanitizer and AddressSanitizer in CI).
#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace kelfont_test {

// Calls same(i) for every i < count, `rounds` times per thread, while
// clear() runs; returns how many calls returned false.
inline int askedAtOnce(std::size_t count, int rounds, const std::function<bool(std::size_t)>& same,
                       const std::function<void()>& clear) {
  std::atomic<int> wrong{0};
  std::atomic<bool> done{false};
  std::thread clearer([&] {
    while (!done.load()) {
      clear();
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  });
  std::vector<std::thread> threads;
  for (unsigned t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      std::vector<std::size_t> order(count);
      for (std::size_t i = 0; i < count; ++i) order[i] = i;
      std::mt19937 random(t + 1);
      for (int round = 0; round < rounds; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        for (std::size_t i : order) wrong += same(i) ? 0 : 1;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  done = true;
  clearer.join();
  return wrong.load();
}

}  // namespace kelfont_test
