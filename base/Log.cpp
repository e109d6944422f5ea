#include "base/Log.h"

#include <cstdio>
#include <mutex>
#include <vector>

#ifdef __ANDROID__
#include <android/log.h>
#endif

namespace qro_base {
namespace {

struct HookSlot {
  std::mutex mutex;
  LogHook hook = nullptr;
  void* context = nullptr;
};

HookSlot& hookSlot() {
  static HookSlot* slot = new HookSlot();  // never destroyed: usable at exit
  return *slot;
}

}  // namespace

void setLogHook(LogHook hook, void* context) {
  HookSlot& slot = hookSlot();
  std::lock_guard<std::mutex> lock(slot.mutex);
  slot.hook = hook;
  slot.context = context;
}

void androidLogVPrint(int priority, const char* tag, const char* format, va_list args) {
  char small[512];
  va_list copy;
  va_copy(copy, args);
  int needed = std::vsnprintf(small, sizeof small, format, copy);
  va_end(copy);
  if (needed < 0) return;
  std::vector<char> large;
  const char* message = small;
  if (static_cast<size_t>(needed) >= sizeof small) {
    large.resize(static_cast<size_t>(needed) + 1);
    std::vsnprintf(large.data(), large.size(), format, args);
    message = large.data();
  }

  HookSlot& slot = hookSlot();
  {
    std::lock_guard<std::mutex> lock(slot.mutex);
    if (slot.hook != nullptr) {
      slot.hook(priority, tag, message, slot.context);
      return;
    }
  }
#ifdef __ANDROID__
  __android_log_write(priority, tag, message);
#else
  static const char kLetters[] = "??VDIWEF";
  char letter = (priority >= 0 && priority < 8) ? kLetters[priority] : '?';
  std::fprintf(stderr, "%c/%s: %s\n", letter, tag, message);
#endif
}

void androidLogPrint(int priority, const char* tag, const char* format, ...) {
  va_list args;
  va_start(args, format);
  androidLogVPrint(priority, tag, format, args);
  va_end(args);
}

void logProfile(const char* format, ...) {
  va_list args;
  va_start(args, format);
  androidLogVPrint(kLogPriorityError, kLogTag, format, args);
  va_end(args);
}

}  // namespace qro_base
