#include "tests/support/LogCapture.h"

#include "base/Log.h"

namespace kelfont_test {

LogCapture::LogCapture() { qro_base::setLogHook(&LogCapture::hook, this); }

LogCapture::~LogCapture() { qro_base::setLogHook(nullptr, nullptr); }

void LogCapture::hook(int priority, const char* tag, const char* message, void* context) {
  auto* self = static_cast<LogCapture*>(context);
  std::lock_guard<std::mutex> lock(self->mutex_);
  self->lines_.push_back(LogLine{priority, tag, message});
}

std::vector<LogLine> LogCapture::lines() const {
  std::lock_guard<std::mutex> lock(mutex_);
  return lines_;
}

std::vector<std::string> LogCapture::messages() const {
  std::lock_guard<std::mutex> lock(mutex_);
  std::vector<std::string> out;
  for (const auto& line : lines_) out.push_back(line.message);
  return out;
}

void LogCapture::clear() {
  std::lock_guard<std::mutex> lock(mutex_);
  lines_.clear();
}

}  // namespace kelfont_test
