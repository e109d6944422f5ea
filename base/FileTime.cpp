#include "base/FileTime.h"

#include <ctime>

namespace qro_base {

int filetime(const char*, tm_zip* time, unsigned long*) {
  if (time == nullptr) return -1;
  std::time_t now = std::time(nullptr);
  std::tm local;
  if (localtime_r(&now, &local) == nullptr) return -1;
  time->tm_sec = static_cast<uInt>(local.tm_sec);
  time->tm_min = static_cast<uInt>(local.tm_min);
  time->tm_hour = static_cast<uInt>(local.tm_hour);
  time->tm_mday = static_cast<uInt>(local.tm_mday);
  time->tm_mon = static_cast<uInt>(local.tm_mon);
  time->tm_year = static_cast<uInt>(local.tm_year);
  return 0;
}

}  // namespace qro_base
