#include "ole/Ox/OxVector.h"

#include <gtest/gtest.h>

#include <numeric>

namespace {

TEST(LightweightVector, StartsEmpty) {
    LightweightVector<int> const numbers;
    EXPECT_TRUE(numbers.empty());
    EXPECT_EQ(numbers.size(), 0U);
}

TEST(LightweightVector, CopiesShareTheOneVector) {
    LightweightVector<int> numbers;
    LightweightVector<int> copy(numbers);
    numbers.push_back(1);
    copy.push_back(2);
    EXPECT_EQ(numbers.size(), 2U);
    EXPECT_EQ(numbers[1], 2);
    EXPECT_EQ(copy[0], 1);
}

TEST(LightweightVector, AssignmentJoinsTheOthersVector) {
    LightweightVector<int> numbers;
    LightweightVector<int> other;
    other.push_back(5);
    numbers.push_back(1);
    numbers = other;
    other.push_back(6);
    EXPECT_EQ(std::accumulate(numbers.begin(), numbers.end(), 0), 11);
}

TEST(LightweightVector, OutlivesTheCopyThatMadeIt) {
    LightweightVector<int> survivor;
    {
        LightweightVector<int> maker;
        maker.push_back(3);
        survivor = maker;
    }
    EXPECT_EQ(survivor[0], 3);
}

TEST(LightweightVector, AppendingIsVirtual) {
    struct Doubling : public LightweightVector<int> {
        void push_back(int const& value) override { LightweightVector<int>::push_back(2 * value); }
    };
    Doubling doubling;
    LightweightVector<int>& base = doubling;
    base.push_back(4);
    EXPECT_EQ(base[0], 8);
}

}  // namespace
