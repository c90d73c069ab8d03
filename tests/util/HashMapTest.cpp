#include "util/HashMap.h"
#include "math/Math.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(HashMap, GrowsOnlyWhenFullAndAlsoForPresentKeys)
{
    util::HashMap<std::string, int> map(3);
    map["a"] = 1;
    map["b"] = 2;
    map["c"] = 3;
    EXPECT_EQ(map.GetBucketCount(), 3u);
    map["a"] = 4; // present key in a full table still grows it
    EXPECT_EQ(map.GetBucketCount(), 7u);
    EXPECT_EQ(map.size(), 3u);
    EXPECT_EQ(*map.TryGet("a"), 4);
    EXPECT_EQ(map.TryGet("zz"), nullptr);
}

TEST(HashSet, InsertIsIdempotentAndEraseReports)
{
    util::HashSet<std::string> set;
    set.insert("x");
    set.insert("x");
    EXPECT_EQ(set.size(), 1u);
    EXPECT_TRUE(set.Contains("x"));
    EXPECT_TRUE(set.erase("x"));
    EXPECT_FALSE(set.erase("x"));
    EXPECT_EQ(set.begin(), set.end());
}

namespace
{

std::vector<std::string> KeysInOrder(const util::HashMap<std::string, int>& map)
{
    std::vector<std::string> keys;
    for (const auto& entry : map)
        keys.push_back(entry.first);
    return keys;
}

} // namespace

TEST(HashMap, GrowthReinsertsInTheOldIterationOrderAndEraseFillsTheHole)
{
    // A one-letter string hashes to its code: "o" (111) and "a" (97) lie in buckets 0 and 1 of 3 but share
    // bucket 6 of 7, so their order after growth tells the old table's order from the order of insertion.
    util::HashMap<std::string, int> map(3);
    map.Insert("a", 1);
    map.Insert("o", 2);
    map.Insert("b", 3);
    EXPECT_EQ(KeysInOrder(map), (std::vector<std::string>{"o", "a", "b"}));
    map.Insert("d", 4);
    EXPECT_EQ(map.GetBucketCount(), 7u);
    EXPECT_EQ(KeysInOrder(map), (std::vector<std::string>{"b", "d", "o", "a"}));
    EXPECT_TRUE(map.erase("o"));
    map.Insert("v", 5); // 118: bucket 6 again, behind "a", which took the hole
    EXPECT_EQ(KeysInOrder(map), (std::vector<std::string>{"b", "d", "a", "v"}));
    EXPECT_EQ(map.GetDiagnostics(),
              "Number of elements:  4\nAverage bucket size: 0.571429\nMaximum bucket size: 2\n");
    map.clear();
    EXPECT_EQ(map.GetBucketCount(), 7u);
    EXPECT_EQ(map.begin(), map.end());
}

TEST(DefaultHasher, HashesAreFixedToTheBit)
{
    util::DefaultHasher hash;
    EXPECT_EQ(hash(reinterpret_cast<int*>(0x1000)), 0x6B343000u);
    EXPECT_EQ(hash(math::TVector2<int>(1, 2)), 0x3DD323C5u);
    EXPECT_EQ(hash(math::TVector2<int>(-3, 2)), 0x073856B9u);
    EXPECT_EQ(hash(std::string("ab")), 6363201u);
    EXPECT_EQ(hash(std::string("a\xff")), 0x006117DEu); // characters count as signed
}
