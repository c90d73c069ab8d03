#include "util/HashMap.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(HashMap, BucketCountsArePrimesAtOrAboveTheWantedCapacity)
{
    EXPECT_EQ((util::HashMap<int, int>(3).GetBucketCount()), 3u);
    EXPECT_EQ((util::HashMap<int, int>(4).GetBucketCount()), 5u);
    EXPECT_EQ((util::HashMap<int, int>(6).GetBucketCount()), 7u);
    EXPECT_EQ((util::HashMap<int, int>(14).GetBucketCount()), 17u);
    EXPECT_EQ((util::HashMap<int, int>(0).GetBucketCount()), 3u);
}

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

TEST(HashMap, IterationOrderFollowsBuckets)
{
    // String hash h = c + 65599 * h: "a" = 97, "b" = 98, "c" = 99; with 7 buckets: 6, 0, 1.
    util::HashMap<std::string, int> map(7);
    map.Insert("a", 1);
    map.Insert("b", 2);
    map.Insert("c", 3);
    std::vector<std::string> order;
    for (auto& entry : map)
        order.push_back(entry.first);
    EXPECT_EQ(order, (std::vector<std::string>{"b", "c", "a"}));
}

TEST(HashMap, EraseMovesTheBucketsLastElementIntoTheHole)
{
    util::HashMap<int, int> map(3);
    // Integers hash by value * 0x8DA6B343; pick keys that share bucket 0 of 3.
    std::vector<int> sameBucket;
    for (int k = 0; sameBucket.size() < 3; ++k)
        if (map.Hash(k) == 0)
            sameBucket.push_back(k);
    map.SetCapacity(3);
    for (int k : sameBucket)
        map.Insert(k, k * 10);
    EXPECT_TRUE(map.erase(sameBucket[0]));
    EXPECT_FALSE(map.erase(sameBucket[0]));
    std::vector<int> order;
    for (auto& entry : map)
        order.push_back(entry.first);
    EXPECT_EQ(order, (std::vector<int>{sameBucket[2], sameBucket[1]}));
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
