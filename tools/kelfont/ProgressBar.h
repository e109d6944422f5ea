#pragma once

#include <chrono>
#include <cstddef>
#include <ostream>
#include <string>

namespace kelfont_tool {

// One self-redrawing line on a terminal: "label [#####-----]  12/40 item".
// Disabled (drawing nothing) when the stream is not a terminal, so logs and
// pipes stay clean. Redraws at most every 50 ms, except for the last step.
// Finish() (also run by the destructor) clears the line.
class ProgressBar {
 public:
  static constexpr std::size_t kWidth = 79;
  static constexpr std::size_t kBarWidth = 24;

  ProgressBar(std::ostream& out, bool enabled, std::string label);
  ~ProgressBar();
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;

  void Update(std::size_t done, std::size_t total, const std::string& item);
  void Finish();

  // The line for a state, without the leading carriage return; at most
  // kWidth columns (UTF-8 sequences count as one column).
  static std::string Render(const std::string& label, std::size_t done, std::size_t total,
                            const std::string& item);

 private:
  std::ostream& out_;
  bool enabled_;
  bool drawn_ = false;
  std::string label_;
  std::chrono::steady_clock::time_point last_{};
};

}  // namespace kelfont_tool
