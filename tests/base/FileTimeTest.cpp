#include "base/FileTime.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

bool sameTime(const tm_zip& zip, std::time_t when) {
  std::tm t;
  localtime_r(&when, &t);
  return zip.tm_sec == static_cast<uInt>(t.tm_sec) && zip.tm_min == static_cast<uInt>(t.tm_min) &&
         zip.tm_hour == static_cast<uInt>(t.tm_hour) &&
         zip.tm_mday == static_cast<uInt>(t.tm_mday) && zip.tm_mon == static_cast<uInt>(t.tm_mon) &&
         zip.tm_year == static_cast<uInt>(t.tm_year);
}

// Months count from 0 and years from 1900, as in struct tm.
TEST(FileTime, FillsTheDateWithTheCurrentLocalTime) {
  tm_zip stamp = {99, 99, 99, 99, 99, 99};
  unsigned long dosDate = 12345;
  std::time_t before = std::time(nullptr);
  EXPECT_EQ(qro_base::filetime("ignored.txt", &stamp, &dosDate), 0);
  std::time_t after = std::time(nullptr);
  EXPECT_TRUE(sameTime(stamp, before) || sameTime(stamp, after));
  EXPECT_EQ(dosDate, 12345ul);
  EXPECT_EQ(qro_base::filetime(nullptr, &stamp, nullptr), 0);
  EXPECT_EQ(qro_base::filetime("x", nullptr, nullptr), -1);
}

}  // namespace
