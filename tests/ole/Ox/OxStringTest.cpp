#include "ole/Ox/OxString.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <cwchar>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/fakes/CountingMemoryService.h"

namespace {

/// The two kinds of string go through the same tests; texts are written once, in ASCII.
template <class CharT>
class OxString : public testing::Test {
protected:
    using String = LightweightString<CharT>;
    using Impl = typename String::Impl;

    static std::basic_string<CharT> chars(std::string_view ascii) {
        return std::basic_string<CharT>(ascii.begin(), ascii.end());
    }
    static String text(std::string_view ascii) { return String(chars(ascii).c_str()); }
    static bool isTerminated(String const& string) {
        return string.c_str()[string.length()] == CharT() &&
               std::char_traits<CharT>::length(string.c_str()) == string.length();
    }
};

using Kinds = testing::Types<char, wchar_t>;
TYPED_TEST_SUITE(OxString, Kinds);

static_assert(offsetof(LightweightString<char>::Impl, text) == 0);
static_assert(offsetof(LightweightString<char>::Impl, length) == 8);
static_assert(offsetof(LightweightString<char>::Impl, capacity) == 12);
static_assert(offsetof(LightweightString<char>::Impl, count) == 16);
static_assert(sizeof(LightweightString<wchar_t>) == 2 * sizeof(void*));

TYPED_TEST(OxString, StartsEmptyWithoutABlock) {
    typename TestFixture::String const string;
    EXPECT_TRUE(string.empty());
    EXPECT_EQ(string.length(), 0U);
    EXPECT_EQ(string.capacity(), 0U);
    EXPECT_EQ(string.shareCount(), 0U);
    ASSERT_NE(string.c_str(), nullptr);
    EXPECT_EQ(string.c_str()[0], TypeParam());
}

TYPED_TEST(OxString, OfANullPointerIsEmpty) {
    typename TestFixture::String const string(static_cast<TypeParam const*>(nullptr));
    EXPECT_TRUE(string.empty());
    EXPECT_EQ(string.capacity(), 0U);
}

TYPED_TEST(OxString, OfAnEmptyTextTakesNoMemory) {
    test::CountingMemoryService memory;
    typename TestFixture::String const string = TestFixture::text("");
    EXPECT_TRUE(string.empty());
    EXPECT_EQ(string.capacity(), 0U);
    EXPECT_FALSE(memory.holds(string.c_str()));
}

TYPED_TEST(OxString, KeepsItsTextTerminated) {
    auto const string = TestFixture::text("clip");
    EXPECT_EQ(string.length(), 4U);
    EXPECT_EQ(string.str(), TestFixture::chars("clip"));
    EXPECT_TRUE(TestFixture::isTerminated(string));
}

TYPED_TEST(OxString, TakesARunOfALongerText) {
    auto const longer = TestFixture::chars("clip.mov");
    typename TestFixture::String const string(longer.c_str(), 4);
    EXPECT_EQ(string.str(), TestFixture::chars("clip"));
    EXPECT_TRUE(TestFixture::isTerminated(string));
}

TYPED_TEST(OxString, IsOneBlockOfHeaderAndCharacters) {
    test::CountingMemoryService memory;
    typename TestFixture::String string;
    string.createImpl(5, false);
    EXPECT_EQ(memory.getAllocations(), 1);
    EXPECT_EQ(memory.getLastByteCount(), sizeof(typename TestFixture::Impl) + 6 * sizeof(TypeParam));
    void const* const header =
        reinterpret_cast<char const*>(string.c_str()) - sizeof(typename TestFixture::Impl);
    EXPECT_TRUE(memory.holds(header));
}

TYPED_TEST(OxString, GivesItsBlockBackWithTheLastHolder) {
    test::CountingMemoryService memory;
    {
        auto string = TestFixture::text("clip");
        int const live = memory.getLive();
        auto copy = string;
        string = {};
        EXPECT_EQ(memory.getLive(), live);
        copy = {};
        EXPECT_EQ(memory.getLive(), live - 1);
    }
    EXPECT_EQ(memory.getLive(), 0);
}

TYPED_TEST(OxString, CopyIsNoAllocation) {
    auto const string = TestFixture::text("clip");
    test::CountingMemoryService memory;
    typename TestFixture::String const copy(string);
    EXPECT_EQ(memory.getAllocations(), 0);
    EXPECT_EQ(copy.c_str(), string.c_str());
    EXPECT_EQ(string.shareCount(), 2U);
}

TYPED_TEST(OxString, ThrowsAndStaysAsItWasWithoutMemory) {
    auto string = TestFixture::text("clip");
    test::CountingMemoryService memory;
    memory.failAt(1);
    EXPECT_THROW(string.resizeFor(100), std::bad_alloc);
    EXPECT_EQ(string.str(), TestFixture::chars("clip"));
}

struct Capacity {
    std::uint32_t length;
    std::uint32_t expected;
};

TYPED_TEST(OxString, NewBlockIsExactUnlessItIsRoundedUp) {
    for (std::uint32_t const length : {1U, 2U, 3U, 4U, 7U, 8U, 100U}) {
        typename TestFixture::String string;
        string.createImpl(length, false);
        EXPECT_EQ(string.capacity(), length + 1);
        EXPECT_EQ(string.length(), length);
    }
}

TYPED_TEST(OxString, NewBlockRoundsUpToThePowerOfTwoAboveTheLength) {
    for (Capacity const& row :
         {Capacity{1, 2}, {2, 4}, {3, 4}, {4, 8}, {7, 8}, {8, 16}, {255, 256}, {256, 512}}) {
        typename TestFixture::String string;
        string.createImpl(row.length, true);
        EXPECT_EQ(string.capacity(), row.expected) << row.length;
    }
}

TYPED_TEST(OxString, NewBlockForNothingIsTheEmptyString) {
    for (bool const roundsUp : {false, true}) {
        test::CountingMemoryService memory;
        typename TestFixture::String string;
        string.createImpl(0, roundsUp);
        EXPECT_TRUE(string.empty());
        EXPECT_EQ(memory.getAllocations(), 0);
    }
}

TYPED_TEST(OxString, NewBlockHasItsTerminator) {
    typename TestFixture::String string;
    string.createImpl(3, true);
    EXPECT_EQ(string.c_str()[3], TypeParam());
}

TYPED_TEST(OxString, NewBlockLeavesOtherHoldersTheirText) {
    auto string = TestFixture::text("clip");
    auto const other = string;
    string.createImpl(2, true);
    EXPECT_EQ(other.str(), TestFixture::chars("clip"));
    EXPECT_EQ(other.shareCount(), 1U);
}

TYPED_TEST(OxString, ResizingToNothingReleasesTheBlock) {
    test::CountingMemoryService memory;
    auto string = TestFixture::text("clip");
    string.resizeFor(0);
    EXPECT_TRUE(string.empty());
    EXPECT_EQ(string.capacity(), 0U);
    EXPECT_EQ(memory.getLive(), 0);
}

TYPED_TEST(OxString, ResizingAnUnsharedBlockCutsItInPlace) {
    auto string = TestFixture::text("clip.mov");
    void const* const before = string.c_str();
    test::CountingMemoryService memory;
    string.resizeFor(4);
    EXPECT_EQ(string.c_str(), before);
    EXPECT_EQ(memory.getAllocations(), 0);
    EXPECT_EQ(string.capacity(), 16U);
    EXPECT_EQ(string.str(), TestFixture::chars("clip"));
    EXPECT_TRUE(TestFixture::isTerminated(string));
}

TYPED_TEST(OxString, ResizingAnUnsharedBlockStretchesItUpToItsCapacity) {
    auto string = TestFixture::text("clip");
    void const* const before = string.c_str();
    string.resizeFor(7);
    EXPECT_EQ(string.c_str(), before);
    EXPECT_EQ(string.length(), 7U);
    EXPECT_EQ(string.capacity(), 8U);
    EXPECT_EQ(string.c_str()[7], TypeParam());
}

TYPED_TEST(OxString, ResizingToTheCapacityTakesANewBlock) {
    auto string = TestFixture::text("clip");
    test::CountingMemoryService memory;
    string.resizeFor(8);
    EXPECT_EQ(memory.getAllocations(), 1);
    EXPECT_EQ(string.capacity(), 16U);
    EXPECT_EQ(string.length(), 8U);
    EXPECT_EQ(string.c_str()[8], TypeParam());
}

TYPED_TEST(OxString, ResizingASharedBlockTakesANewOneEvenToShrink) {
    auto string = TestFixture::text("clip.mov");
    auto const other = string;
    string.resizeFor(3);
    EXPECT_NE(string.c_str(), other.c_str());
    EXPECT_EQ(string.length(), 3U);
    EXPECT_EQ(string.capacity(), 4U);
    EXPECT_EQ(string.c_str()[3], TypeParam());
    EXPECT_EQ(other.str(), TestFixture::chars("clip.mov"));
    EXPECT_EQ(other.shareCount(), 1U);
}

TYPED_TEST(OxString, ResizedBlockHasThePowerOfTwoAboveTheLength) {
    for (Capacity const& row : {Capacity{1, 2}, {2, 4}, {3, 4}, {4, 8}, {15, 16}, {16, 32}}) {
        typename TestFixture::String string;
        string.resizeFor(row.length);
        EXPECT_EQ(string.capacity(), row.expected) << row.length;
        EXPECT_EQ(string.length(), row.length);
    }
}

TYPED_TEST(OxString, JoinPutsTwoRunsEndToEnd) {
    auto const first = TestFixture::chars("clipXX");
    auto const second = TestFixture::chars(".movXX");
    auto const joined = TestFixture::String::join(first.c_str(), 4, second.c_str(), 4);
    EXPECT_EQ(joined.str(), TestFixture::chars("clip.mov"));
    EXPECT_EQ(joined.capacity(), 16U);
    EXPECT_TRUE(TestFixture::isTerminated(joined));
}

TYPED_TEST(OxString, JoinOfNothingIsEmpty) {
    test::CountingMemoryService memory;
    auto const joined = TestFixture::String::join(nullptr, 0, nullptr, 0);
    EXPECT_TRUE(joined.empty());
    EXPECT_EQ(memory.getAllocations(), 0);
}

TYPED_TEST(OxString, JoinTakesAnEmptySideAsNothing) {
    auto const some = TestFixture::chars("a");
    auto const joined = TestFixture::String::join(nullptr, 0, some.c_str(), 1);
    EXPECT_EQ(joined.str(), some);
    EXPECT_EQ(joined.capacity(), 2U);
}

TYPED_TEST(OxString, UnsharingCopiesASharedBlock) {
    auto string = TestFixture::text("clips");
    auto const other = string;
    string.unshare();
    EXPECT_NE(string.c_str(), other.c_str());
    EXPECT_EQ(string.str(), other.str());
    EXPECT_EQ(string.capacity(), 8U);
    EXPECT_EQ(string.shareCount(), 1U);
    EXPECT_EQ(other.shareCount(), 1U);
}

TYPED_TEST(OxString, UnsharingFitsTheCapacityToTheLength) {
    typename TestFixture::String string;
    string.createImpl(100, true);
    string.resizeFor(3);
    auto const other = string;
    string.unshare();
    EXPECT_EQ(string.capacity(), 4U);
    EXPECT_EQ(other.capacity(), 128U);
}

TYPED_TEST(OxString, UnsharingLeavesAnUnsharedStringAlone) {
    auto string = TestFixture::text("clip");
    void const* const before = string.c_str();
    test::CountingMemoryService memory;
    string.unshare();
    EXPECT_EQ(string.c_str(), before);
    EXPECT_EQ(memory.getAllocations(), 0);
}

TYPED_TEST(OxString, UnsharingLeavesAnEmptyStringAlone) {
    typename TestFixture::String string;
    string.unshare();
    EXPECT_EQ(string.capacity(), 0U);
}

TYPED_TEST(OxString, AppendingLeavesOtherHoldersTheirText) {
    auto string = TestFixture::text("clip");
    auto const other = string;
    string += TestFixture::text(".mov");
    EXPECT_EQ(string.str(), TestFixture::chars("clip.mov"));
    EXPECT_EQ(other.str(), TestFixture::chars("clip"));
}

TYPED_TEST(OxString, AppendingItselfDoublesTheText) {
    auto string = TestFixture::text("ab");
    string += string;
    EXPECT_EQ(string.str(), TestFixture::chars("abab"));
    string += string;
    EXPECT_EQ(string.str(), TestFixture::chars("abababab"));
}

TYPED_TEST(OxString, RepeatedAppendsTakeMemoryOnlyWhenTheyDouble) {
    auto const one = TestFixture::text("x");
    typename TestFixture::String string;
    test::CountingMemoryService memory;
    for (int i = 0; i < 1000; ++i) {
        string += one;
    }
    EXPECT_EQ(string.length(), 1000U);
    EXPECT_LE(memory.getAllocations(), 10);
}

TYPED_TEST(OxString, UnsetAndEmptyStringsAreEqual) {
    EXPECT_TRUE(typename TestFixture::String() == TestFixture::text(""));
}

TYPED_TEST(OxString, UnsetStringOrdersBeforeEveryText) {
    typename TestFixture::String const unset;
    EXPECT_TRUE(unset < TestFixture::text("a"));
    EXPECT_FALSE(TestFixture::text("a") < unset);
    EXPECT_FALSE(unset < TestFixture::text(""));
}

TYPED_TEST(OxString, OrdersLikeTheCStringFunctions) {
    EXPECT_TRUE(TestFixture::text("B") < TestFixture::text("a"));
    EXPECT_TRUE(TestFixture::text("ab") < TestFixture::text("abc"));
    EXPECT_TRUE(TestFixture::text("abc") > TestFixture::text("abB"));
    EXPECT_TRUE(TestFixture::text("abc") != TestFixture::text("abd"));
}

TEST(OxWideString, OrdersByCodePoint) {
    LightweightString<wchar_t> const lower(L"\u00e4.mov");
    LightweightString<wchar_t> const higher(L"\U0001F3AC.mov");
    EXPECT_TRUE(LightweightString<wchar_t>(L"z.mov") < lower);
    EXPECT_TRUE(lower < higher);
}

TYPED_TEST(OxString, MayBeHandedToAnotherThreadByCopy) {
    auto const string = TestFixture::text("shared between threads");
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([mine = string] {
                for (int round = 0; round < 500; ++round) {
                    auto changed = mine;
                    changed.unshare();
                    changed.resizeFor(6);
                    EXPECT_EQ(changed.str(), TestFixture::chars("shared"));
                }
            });
        }
    }
    EXPECT_EQ(string.shareCount(), 1U);
    EXPECT_EQ(string.str(), TestFixture::chars("shared between threads"));
}

}  // namespace
