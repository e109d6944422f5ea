#include "tests/support/LogCapture.h"

#include <cctype>

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

std::string LogCapture::taken(const std::string& word, const std::string& path) {
  std::string out;
  for (LogLine line : lines()) {
    std::string& said = line.message;
    if (said.find(word) == std::string::npos) continue;
    for (std::size_t at; !path.empty() && (at = said.find(path)) != std::string::npos;)
      said.replace(at, path.size(), "$");
    for (char& c : said) c = std::isdigit(static_cast<unsigned char>(c)) ? '9' : c == ' ' ? '_' : c;
    out += (out.empty() ? "" : "|") + std::to_string(line.priority) + ":" + line.tag + ":" + said;
  }
  clear();
  return out.empty() ? "-" : out;
}

}  // namespace kelfont_test
