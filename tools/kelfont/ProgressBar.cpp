#include "tools/kelfont/ProgressBar.h"

#include <cstdio>
#include <utility>

namespace kelfont_tool {

namespace {

// Cuts `text` after `columns` code points.
std::string cutColumns(const std::string& text, std::size_t columns) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
      if (count == columns) return text.substr(0, i);
      ++count;
    }
  }
  return text;
}

std::size_t columnsOf(const std::string& text) {
  std::size_t count = 0;
  for (char c : text) count += (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  return count;
}

}  // namespace

ProgressBar::ProgressBar(std::ostream& out, bool enabled, std::string label)
    : out_(out), enabled_(enabled), label_(std::move(label)) {}

ProgressBar::~ProgressBar() { Finish(); }

std::string ProgressBar::Render(const std::string& label, std::size_t done, std::size_t total,
                                const std::string& item) {
  if (done > total) done = total;
  const std::size_t filled = total == 0 ? kBarWidth : done * kBarWidth / total;
  char counts[48];
  std::snprintf(counts, sizeof counts, " %zu/%zu ", done, total);
  std::string line = label + " [" + std::string(filled, '#') +
                     std::string(kBarWidth - filled, '-') + "]" + counts;
  const std::size_t used = columnsOf(line);
  if (used < kWidth) line += cutColumns(item, kWidth - used);
  return cutColumns(line, kWidth);
}

void ProgressBar::Update(std::size_t done, std::size_t total, const std::string& item) {
  if (!enabled_) return;
  const auto now = std::chrono::steady_clock::now();
  if (drawn_ && done < total && now - last_ < std::chrono::milliseconds(50)) return;
  last_ = now;
  out_ << "\r\033[K" << Render(label_, done, total, item) << std::flush;
  drawn_ = true;
}

void ProgressBar::Finish() {
  if (!drawn_) return;
  out_ << "\r\033[K" << std::flush;
  drawn_ = false;
}

}  // namespace kelfont_tool
