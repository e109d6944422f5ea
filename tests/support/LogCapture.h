#pragma once
// Captures the library's log lines while it lives.

#include <mutex>
#include <string>
#include <vector>

namespace kelfont_test {

struct LogLine {
  int priority;
  std::string tag;
  std::string message;
};

class LogCapture {
 public:
  LogCapture();
  ~LogCapture();
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;

  std::vector<LogLine> lines() const;
  // Just the messages, in order.
  std::vector<std::string> messages() const;
  void clear();
  // The lines since the last look (then forgotten) whose message holds `word`,
  // each as "priority:tag:message", in the message `path` as "$", digits as 9
  // and spaces as "_"; joined by "|", "-" when there are none.
  std::string taken(const std::string& word = "", const std::string& path = "");

 private:
  static void hook(int priority, const char* tag, const char* message, void* context);
  mutable std::mutex mutex_;
  std::vector<LogLine> lines_;
};

}  // namespace kelfont_test
