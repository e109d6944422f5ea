#include "base/FileTime.h"

#include <gtest/gtest.h>

#include <ctime>

namespace {

std::tm localNow() {
  std::time_t now = std::time(nullptr);
  std::tm local;
  localtime_r(&now, &local);
  return local;
}

bool sameTime(const tm_zip& zip, const std::tm& t) {
  return zip.tm_sec == static_cast<uInt>(t.tm_sec) && zip.tm_min == static_cast<uInt>(t.tm_min) &&
         zip.tm_hour == static_cast<uInt>(t.tm_hour) &&
         zip.tm_mday == static_cast<uInt>(t.tm_mday) && zip.tm_mon == static_cast<uInt>(t.tm_mon) &&
         zip.tm_year == static_cast<uInt>(t.tm_year);
}

TEST(FileTime, FillsTheDateWithTheCurrentLocalTime) {
  tm_zip stamp = {99, 99, 99, 99, 99, 99};
  unsigned long dosDate = 12345;
  std::tm before = localNow();
  EXPECT_EQ(qro_base::filetime("ignored.txt", &stamp, &dosDate), 0);
  std::tm after = localNow();
  EXPECT_TRUE(sameTime(stamp, before) || sameTime(stamp, after));
  // Months count from 0 and years from 1900, as in struct tm.
  EXPECT_LE(stamp.tm_mon, 11u);
  EXPECT_GE(stamp.tm_year, 120u);
  EXPECT_EQ(dosDate, 12345ul);
}

TEST(FileTime, NeedsNeitherNameNorDosDate) {
  tm_zip stamp = {};
  EXPECT_EQ(qro_base::filetime(nullptr, &stamp, nullptr), 0);
  EXPECT_GE(stamp.tm_mday, 1u);
  EXPECT_EQ(qro_base::filetime("x", nullptr, nullptr), -1);
}

}  // namespace
