#pragma once
// The library's one logging layer. On Android it writes to liblog
// (__android_log_print); elsewhere to standard error as "E/TAG: message".
// Tests install a hook that receives every line instead.

#include <cstdarg>

namespace qro_base {

// Android's priority for errors; every line of the library is logged with it.
constexpr int kLogPriorityError = 6;
// The tag of the library's profiling and entry-point messages.
constexpr const char* kLogTag = "QRO-NATIVE-PROFILE";

// Receives one formatted line (without a trailing newline).
using LogHook = void (*)(int priority, const char* tag, const char* message, void* context);

// Installs a hook that receives every line instead of the platform log;
// nullptr restores the platform log.
void setLogHook(LogHook hook, void* context);

// printf-style: formats and writes one line to the platform log.
void androidLogPrint(int priority, const char* tag, const char* format, ...)
    __attribute__((format(printf, 3, 4)));
void androidLogVPrint(int priority, const char* tag, const char* format, va_list args);

// Shorthand for the library's usual line: priority 6, tag "QRO-NATIVE-PROFILE".
void logProfile(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace qro_base
