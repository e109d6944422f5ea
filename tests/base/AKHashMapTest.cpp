#include "base/AKHashMap.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

using qro_base::AKHashMap;
using qro_base::AKHashMapHashMethodDefault;
using Map = AKHashMap<char, unsigned short>;

unsigned int len(const char* s) { return static_cast<unsigned int>(std::strlen(s)); }

unsigned short find(Map& map, const std::string& key) {
  auto* node = map.FindNode(key.data(), static_cast<unsigned int>(key.size()));
  return node != nullptr ? node->GetValue() : 0xFFFF;
}

TEST(AKHashMapConstruction, SizeBelowTenIsRefusedOnStandardError) {
  for (unsigned int size : {9u, 0u}) {
    testing::internal::CaptureStderr();
    Map map(size, 10, AKHashMapHashMethodDefault);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "AKHashMap Size is too small.\n");
    EXPECT_FALSE(map.IsValid());
    EXPECT_EQ(map.GetBucketCount(), 0u);
    // A map that is not valid stores and finds nothing, and does not crash.
    EXPECT_EQ(map.FindNode("ko", 2), nullptr);
    EXPECT_EQ(map.Insert("ko", 2, 7), nullptr);
    EXPECT_EQ(map.FindNode("ko", 2), nullptr);
    EXPECT_EQ(map.GetCount(), 0u);
    EXPECT_FALSE(map.IsLastFound());
    EXPECT_EQ(map.GetBucketHead(0), nullptr);
  }
}

TEST(AKHashMapConstruction, BucketCountIsTheNextPrime) {
  const struct {
    unsigned int size;
    unsigned int buckets;
  } cases[] = {{10, 11}, {11, 11}, {12, 13}, {24, 29}, {25, 29}, {49, 53},
               {113, 113}, {200, 211}, {1000, 1009}, {7919, 7919}};
  for (const auto& c : cases) {
    testing::internal::CaptureStderr();
    Map map(c.size, 10, AKHashMapHashMethodDefault);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << c.size;
    EXPECT_TRUE(map.IsValid()) << c.size;
    EXPECT_EQ(map.GetBucketCount(), c.buckets) << c.size;
    EXPECT_EQ(map.GetCount(), 0u);
    EXPECT_FALSE(map.IsLastFound());
  }
}

TEST(AKHashMapHash, ShiftsByFiveAndAddsUnsignedBytes) {
  // ((97 * 32) + 98) * 32 + 99
  EXPECT_EQ(Map::Hash("abc", 3, 10), 102563u);
  // A byte above 0x7F counts as 255, not as a negative char.
  EXPECT_EQ(Map::Hash("\xff", 1, 10), 255u);
  // 122 * (32^7 - 1) / 31, reduced modulo 2^32.
  EXPECT_EQ(Map::Hash("zzzzzzz", 7, 10), 2078209978u);
  EXPECT_EQ(Map::Hash("", 0, 10), 0u);
  EXPECT_EQ(Map::Hash(nullptr, 0, 10), 0u);
}

TEST(AKHashMapHash, OnlyTheLeadingBytesCount) {
  EXPECT_EQ(Map::Hash("abcdefghijX", 11, 10), Map::Hash("abcdefghij", 10, 10));
  EXPECT_EQ(Map::Hash("abcdefghijX", 11, 10), Map::Hash("abcdefghijY", 11, 10));
  EXPECT_EQ(Map::Hash("abcdefghijX", 11, 3), 102563u);
  EXPECT_EQ(Map::Hash("abc", 3, 0), 0u);
  EXPECT_EQ(Map::Hash("abc", 1, 10), 97u);
}

TEST(AKHashMapHash, BucketIsHashModuloBucketCount) {
  Map map(200, 10, AKHashMapHashMethodDefault);
  EXPECT_EQ(map.GetBucketIndex("abc", 3), 102563u % 211u);
  EXPECT_EQ(map.GetBucketIndex("abc", 3), 17u);
}

TEST(AKHashMapInsert, FindsWhatWasInsertedAndNothingElse) {
  Map map(200, 10, AKHashMapHashMethodDefault);
  ASSERT_NE(map.Insert("ko-KR", 5, 0x0412), nullptr);
  EXPECT_TRUE(map.IsLastFound());
  ASSERT_NE(map.Insert("ko", 2, 0x0012), nullptr);
  EXPECT_EQ(map.GetCount(), 2u);
  EXPECT_EQ(find(map, "ko-KR"), 0x0412);
  EXPECT_TRUE(map.IsLastFound());
  EXPECT_EQ(find(map, "ko"), 0x0012);
  EXPECT_EQ(find(map, "k"), 0xFFFF);
  EXPECT_FALSE(map.IsLastFound());
  EXPECT_EQ(find(map, "ko-KRX"), 0xFFFF);
  EXPECT_EQ(find(map, "KO-KR"), 0xFFFF);
  EXPECT_EQ(find(map, ""), 0xFFFF);
}

TEST(AKHashMapInsert, TheLastInsertionOfAKeyWins) {
  Map map(10, 10, AKHashMapHashMethodDefault);
  auto* first = map.Insert("de", 2, 1);
  auto* second = map.Insert("de", 2, 2);
  EXPECT_EQ(first, second);
  EXPECT_TRUE(map.IsLastFound());
  EXPECT_EQ(map.GetCount(), 1u);
  EXPECT_EQ(find(map, "de"), 2);
  unsigned int bucket = map.GetBucketIndex("de", 2);
  ASSERT_NE(map.GetBucketHead(bucket), nullptr);
  EXPECT_EQ(map.GetBucketHead(bucket)->GetNext(), nullptr);
}

TEST(AKHashMapInsert, KeysSharingTheHashedPrefixAreToldApart) {
  Map map(200, 10, AKHashMapHashMethodDefault);
  map.Insert("abcdefghijX", 11, 1);
  map.Insert("abcdefghijY", 11, 2);
  map.Insert("abcdefghij", 10, 3);
  EXPECT_EQ(map.GetBucketIndex("abcdefghijX", 11), map.GetBucketIndex("abcdefghijY", 11));
  EXPECT_EQ(map.GetCount(), 3u);
  EXPECT_EQ(find(map, "abcdefghijX"), 1);
  EXPECT_EQ(find(map, "abcdefghijY"), 2);
  EXPECT_EQ(find(map, "abcdefghij"), 3);
  EXPECT_EQ(find(map, "abcdefghijZ"), 0xFFFF);

  // Newest first within the shared bucket.
  auto* node = map.GetBucketHead(map.GetBucketIndex("abcdefghij", 10));
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(std::string(node->GetKey()), "abcdefghij");
  node = node->GetNext();
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(std::string(node->GetKey()), "abcdefghijY");
  node = node->GetNext();
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(std::string(node->GetKey()), "abcdefghijX");
  EXPECT_EQ(node->GetNext(), nullptr);
}

TEST(AKHashMapInsert, KeysAreWholeByteStrings) {
  Map map(10, 10, AKHashMapHashMethodDefault);
  const char withZero[] = {'a', 'b', '\0', 'c'};
  const char highBytes[] = {'\xff', '\x80', '\x00', '\x7f'};
  map.Insert("ab", 2, 1);
  map.Insert(withZero, 4, 2);
  map.Insert(highBytes, 4, 3);
  map.Insert("", 0, 4);
  EXPECT_EQ(map.GetCount(), 4u);
  EXPECT_EQ(find(map, "ab"), 1);
  EXPECT_EQ(find(map, std::string(withZero, 4)), 2);
  EXPECT_EQ(find(map, std::string(highBytes, 4)), 3);
  EXPECT_EQ(find(map, std::string(highBytes, 3)), 0xFFFF);
  EXPECT_EQ(find(map, ""), 4);
  ASSERT_NE(map.FindNode(nullptr, 0), nullptr);
  EXPECT_EQ(map.FindNode(nullptr, 0)->GetValue(), 4);
}

TEST(AKHashMapInsert, NullKeyWithALengthIsRefused) {
  Map map(10, 10, AKHashMapHashMethodDefault);
  EXPECT_EQ(map.Insert(nullptr, 3, 1), nullptr);
  EXPECT_EQ(map.FindNode(nullptr, 3), nullptr);
  EXPECT_EQ(map.GetCount(), 0u);
}

TEST(AKHashMapInsert, LongKeysAndAZeroHashKeyLength) {
  Map map(10, 0, AKHashMapHashMethodDefault);
  std::string longKey(5000, 'q');
  std::string otherLongKey = longKey;
  otherLongKey.back() = 'r';
  map.Insert(longKey.data(), 5000, 1);
  map.Insert(otherLongKey.data(), 5000, 2);
  map.Insert("x", 1, 3);
  // With no hashed bytes everything shares bucket 0.
  EXPECT_EQ(map.GetBucketIndex("x", 1), 0u);
  EXPECT_EQ(find(map, longKey), 1);
  EXPECT_EQ(find(map, otherLongKey), 2);
  EXPECT_EQ(find(map, "x"), 3);
  EXPECT_EQ(find(map, longKey.substr(0, 4999)), 0xFFFF);
}

TEST(AKHashMapInsert, StoresAZeroTerminatedCopyOfTheKey) {
  Map map(10, 10, AKHashMapHashMethodDefault);
  char buffer[] = {'f', 'r', '-', 'C', 'A', '!'};
  auto* node = map.Insert(buffer, 5, 0x0C0C);
  ASSERT_NE(node, nullptr);
  buffer[0] = 'x';
  EXPECT_NE(node->GetKey(), buffer);
  EXPECT_EQ(node->GetKeyLength(), 5u);
  EXPECT_EQ(node->GetKey()[5], '\0');
  EXPECT_STREQ(node->GetKey(), "fr-CA");
  EXPECT_EQ(find(map, "fr-CA"), 0x0C0C);
  EXPECT_EQ(find(map, "xr-CA"), 0xFFFF);
}

TEST(AKHashMapInsert, ManyEntriesInFewBuckets) {
  Map map(10, 10, AKHashMapHashMethodDefault);
  for (unsigned short i = 0; i < 3000; ++i) {
    std::string key = "key" + std::to_string(i);
    map.Insert(key.data(), static_cast<unsigned int>(key.size()), i);
  }
  EXPECT_EQ(map.GetCount(), 3000u);
  unsigned int chained = 0;
  for (unsigned int b = 0; b < map.GetBucketCount(); ++b) {
    for (auto* n = map.GetBucketHead(b); n != nullptr; n = n->GetNext()) ++chained;
  }
  EXPECT_EQ(chained, 3000u);
  EXPECT_EQ(find(map, "key0"), 0);
  EXPECT_EQ(find(map, "key1234"), 1234);
  EXPECT_EQ(find(map, "key2999"), 2999);
  EXPECT_EQ(find(map, "key3000"), 0xFFFF);
}

TEST(AKHashMapInsert, TextValues) {
  AKHashMap<char, const char*> map(200, 10, AKHashMapHashMethodDefault);
  map.Insert("en", 2, "US");
  map.Insert("es", 2, "ES_tradnl");
  auto* node = map.FindNode("es", len("es"));
  ASSERT_NE(node, nullptr);
  EXPECT_STREQ(node->GetValue(), "ES_tradnl");
  EXPECT_EQ(map.FindNode("fi", 2), nullptr);
}

TEST(AKHMNode, SetKeyReplacesThePreviousKey) {
  qro_base::AKHMNode<char, int> node;
  EXPECT_EQ(node.GetKey(), nullptr);
  ASSERT_TRUE(node.SetKey("first-key", 9));
  ASSERT_TRUE(node.SetKey("ab", 2));
  EXPECT_STREQ(node.GetKey(), "ab");
  EXPECT_EQ(node.GetKeyLength(), 2u);
  ASSERT_TRUE(node.SetKey("", 0));
  EXPECT_STREQ(node.GetKey(), "");
  EXPECT_EQ(node.GetKeyLength(), 0u);
}

}  // namespace
