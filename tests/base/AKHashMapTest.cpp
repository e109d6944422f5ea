#include <gtest/gtest.h>

#include <string>

#include "base/AKHashMap.h"

namespace {

using qro_base::AKHashMapHashMethodDefault;
using Map = qro_base::AKHashMap<char, unsigned short>;

unsigned short find(Map& map, const std::string& key) {
  auto* node = map.FindNode(key.data(), static_cast<unsigned int>(key.size()));
  return node != nullptr ? node->GetValue() : 0xFFFF;
}

TEST(AKHashMap, SizeBelowTenIsRefusedOnStandardError) {
  testing::internal::CaptureStderr();
  Map map(9, 10, AKHashMapHashMethodDefault);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "AKHashMap Size is too small.\n");
  EXPECT_FALSE(map.IsValid());
  // A map that is not valid stores and finds nothing, and does not crash.
  EXPECT_EQ(map.Insert("ko", 2, 7), nullptr);
  EXPECT_EQ(map.FindNode("ko", 2), nullptr);
  EXPECT_EQ(map.GetBucketHead(0), nullptr);
}

TEST(AKHashMap, FindsWholeKeysAndTheLastInsertionWins) {
  Map map(10, 10, AKHashMapHashMethodDefault);
  const char withZero[] = {'a', 'b', '\0', 'c'};
  ASSERT_NE(map.Insert("ko-KR", 5, 0x0412), nullptr);
  map.Insert("ko", 2, 1);
  auto* first = map.Insert("ko", 2, 0x0012);
  EXPECT_TRUE(map.IsLastFound());
  map.Insert(withZero, 4, 2);
  map.Insert("\xff\x80", 2, 3);
  map.Insert("", 0, 4);
  EXPECT_EQ(map.GetCount(), 5u);
  EXPECT_EQ(map.FindNode("ko", 2), first);
  EXPECT_EQ(find(map, "ko"), 0x0012);
  EXPECT_EQ(find(map, "ko-KR"), 0x0412);
  EXPECT_EQ(find(map, std::string(withZero, 4)), 2);
  EXPECT_EQ(find(map, "\xff\x80"), 3);
  EXPECT_EQ(find(map, ""), 4);
  for (const char* missing : {"k", "ko-KRX", "KO-KR", "ab"}) {
    EXPECT_EQ(find(map, missing), 0xFFFF) << missing;
    EXPECT_FALSE(map.IsLastFound());
  }
  EXPECT_EQ(map.Insert(nullptr, 3, 1), nullptr);
}

TEST(AKHashMap, StoresAZeroTerminatedCopyOfTheKey) {
  Map map(10, 10, AKHashMapHashMethodDefault);
  char buffer[] = {'f', 'r', '-', 'C', 'A', '!'};
  auto* node = map.Insert(buffer, 5, 0x0C0C);
  ASSERT_NE(node, nullptr);
  buffer[0] = 'x';
  EXPECT_EQ(node->GetKeyLength(), 5u);
  EXPECT_STREQ(node->GetKey(), "fr-CA");
  EXPECT_EQ(find(map, "fr-CA"), 0x0C0C);
}

// Keys alike in their hashed part are told apart whole.
TEST(AKHashMap, ManyEntriesAndLongKeysWithoutHashedBytes) {
  Map map(10, 0, AKHashMapHashMethodDefault);  // everything in bucket 0
  for (unsigned short i = 0; i < 3000; ++i) {
    std::string key = "key" + std::to_string(i);
    map.Insert(key.data(), static_cast<unsigned int>(key.size()), i);
  }
  std::string longKey(5000, 'q');
  map.Insert(longKey.data(), 5000, 1);
  EXPECT_EQ(map.GetCount(), 3001u);
  EXPECT_EQ(find(map, "key1234"), 1234);
  EXPECT_EQ(find(map, "key3000"), 0xFFFF);
  EXPECT_EQ(find(map, longKey), 1);
  EXPECT_EQ(find(map, longKey.substr(0, 4999)), 0xFFFF);
}

}  // namespace
