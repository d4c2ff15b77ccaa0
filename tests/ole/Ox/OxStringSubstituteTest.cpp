#include <gtest/gtest.h>

#include <cstdint>

#include "ole/Ox/OxString.h"
#include "tests/fakes/CountingMemoryService.h"

namespace {

using Wide = LightweightString<wchar_t>;

std::uint32_t lengthOf(wchar_t const* text) {
    return static_cast<std::uint32_t>(std::wcslen(text));
}

/// `text` after every `what` in it was replaced by `with`, in place.
Wide substituted(wchar_t const* text, wchar_t const* what, wchar_t const* with) {
    Wide string(text);
    string.substitute(what, lengthOf(what), with, lengthOf(with));
    return string;
}

/// How a length that isn't that of the text is taken.
struct GivenLength {
    char const* behaviour;
    wchar_t const* text;
    wchar_t const* what;
    std::uint32_t length;
    wchar_t const* with;
    std::uint32_t withLength;
    wchar_t const* result;
};

class SubstituteWithALength : public ::testing::TestWithParam<GivenLength> {};

TEST_P(SubstituteWithALength, DoesWhatItsNameSays) {
    GivenLength const& given = GetParam();
    Wide string(given.text);
    string.substitute(given.what, given.length, given.with, given.withLength);
    EXPECT_STREQ(string.c_str(), given.result);
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, SubstituteWithALength,
    ::testing::Values(
        GivenLength{"TheLargestCutsAllThatFollows", L"Copying $FILE$ to the disk", L"$FILE$", 0xFFFFFFFF,
                    L"a", 1, L"Copying a"},
        GivenLength{"PastTheEndCutsAllThatFollows", L"ab$c", L"$", 3, L"--", 2, L"ab--"},
        GivenLength{"ThatWouldWrapCutsAllThatFollows", L"ab$cd", L"$", 0xFFFFFFFE, L"-", 1, L"ab-"},
        GivenLength{"UpToTheEndExactlyCutsAllThatFollows", L"ab$c", L"$", 2, L"-", 1, L"ab-"},
        GivenLength{"LongerThanTheTextCutsWhatFollowsIt", L"$1 and $2", L"$", 2, L"x", 1, L"x and x"},
        GivenLength{"ShorterThanTheTextLeavesItsRest", L"$FILE$!", L"$FILE$", 1, L"-", 1, L"-FILE$!"},
        GivenLength{"OfTheInsertedTextTakesThatMuchOfIt", L"a$b", L"$", 1, L"12345", 2, L"a12b"}),
    [](::testing::TestParamInfo<GivenLength> const& given) { return std::string(given.param.behaviour); });

TEST(Substitute, ReplacesAPlaceholder) {
    EXPECT_STREQ(substituted(L"Copying $FILE$ now", L"$FILE$", L"a.mov").c_str(), L"Copying a.mov now");
}

TEST(Substitute, ReplacesEveryPlaceholder) {
    EXPECT_STREQ(substituted(L"$NUM$ of $NUM$, $NUM1$", L"$NUM$", L"12").c_str(), L"12 of 12, $NUM1$");
}

TEST(Substitute, ReplacesAtTheStartAndAtTheEnd) {
    EXPECT_STREQ(substituted(L"$NUM1$/$NUM2$", L"$NUM1$", L"7").c_str(), L"7/$NUM2$");
    EXPECT_STREQ(substituted(L"$NUM1$/$NUM2$", L"$NUM2$", L"9").c_str(), L"$NUM1$/9");
}

TEST(Substitute, RemovesAPlaceholderWithAnEmptyText) {
    EXPECT_STREQ(substituted(L"a$NUM$b", L"$NUM$", L"").c_str(), L"ab");
}

TEST(Substitute, OfNothingButThePlaceholderByNothingIsTheEmptyString) {
    test::CountingMemoryService memory;
    {
        Wide const result = substituted(L"$NUM$", L"$NUM$", L"");
        EXPECT_TRUE(result.empty());
        EXPECT_EQ(result.capacity(), 0U);
    }
    EXPECT_EQ(memory.getLive(), 0);
}

TEST(Substitute, OfPlaceholdersOnlyRemovesAllOfThem) {
    EXPECT_TRUE(substituted(L"$NUM$$NUM$$NUM$", L"$NUM$", L"").empty());
}

TEST(Substitute, NeverSearchesTheInsertedText) {
    EXPECT_STREQ(substituted(L"x", L"x", L"axa").c_str(), L"axa");
    EXPECT_STREQ(substituted(L"xx", L"x", L"xx").c_str(), L"xxxx");
}

TEST(Substitute, FindsNothingAcrossTheSeamOfInsertedText) {
    EXPECT_STREQ(substituted(L"aab", L"ab", L"a").c_str(), L"aa");
    EXPECT_STREQ(substituted(L"abb", L"ab", L"a").c_str(), L"ab");
}

TEST(Substitute, WithoutTheTextChangesNothing) {
    Wide string(L"Copying");
    void const* const before = string.c_str();
    string.substitute(L"$FILE$", 6, L"x", 1);
    EXPECT_EQ(string.c_str(), before);
}

TEST(Substitute, OfAnEmptyStringStaysEmpty) {
    EXPECT_TRUE(substituted(L"", L"$FILE$", L"x").empty());
}

TEST(Substitute, OfAnEmptyTextChangesNothing) {
    EXPECT_STREQ(substituted(L"Copying", L"", L"x").c_str(), L"Copying");
}

TEST(Substitute, ResultHasThePowerOfTwoAboveItsLength) {
    EXPECT_EQ(substituted(L"a$NUM$", L"$NUM$", L"").capacity(), 2U);
    EXPECT_EQ(substituted(L"a$NUM$", L"$NUM$", L"b").capacity(), 4U);
    EXPECT_EQ(substituted(L"a$NUM$", L"$NUM$", L"bcd").capacity(), 8U);
    EXPECT_EQ(substituted(L"a$NUM$", L"$NUM$", L"bcdefgh").capacity(), 16U);
}

TEST(Substitute, LeavesOtherHoldersTheirText) {
    Wide string(L"a$NUM$");
    Wide const other(string);
    string.substitute(L"$NUM$", 5, L"1", 1);
    EXPECT_STREQ(string.c_str(), L"a1");
    EXPECT_STREQ(other.c_str(), L"a$NUM$");
    EXPECT_EQ(other.shareCount(), 1U);
}

TEST(Substitute, TakesANewBlockAlsoForAnUnsharedString) {
    Wide string(L"a$b");
    test::CountingMemoryService memory;
    string.substitute(L"$", 1, L"x", 1);
    EXPECT_EQ(memory.getAllocations(), 1);
    EXPECT_EQ(string.c_str()[3], L'\0');
    EXPECT_EQ(string.length(), 3U);
}

TEST(Substitute, MayInsertAPieceOfTheStringItself) {
    Wide string(L"a.b.");
    string.substitute(L".", 1, string.c_str(), 1);
    EXPECT_STREQ(string.c_str(), L"aaba");
}

TEST(Substitute, MayLookForTheStringsOwnEnd) {
    Wide string(L"a.b.");
    string.substitute(string.c_str() + 3, 1, L"--", 2);
    EXPECT_STREQ(string.c_str(), L"a--b--");
}

TEST(SubstitutedCopy, LeavesTheReceiver) {
    Wide const string(L"a$NUM$b$NUM$");
    EXPECT_STREQ(string.substitute(L"$NUM$", Wide(L"1")).c_str(), L"a1b1");
    EXPECT_STREQ(string.c_str(), L"a$NUM$b$NUM$");
}

TEST(SubstitutedCopy, TakesAStringToLookFor) {
    Wide const string(L"a$NUM$b");
    EXPECT_STREQ(string.substitute(Wide(L"$NUM$"), Wide(L"22")).c_str(), L"a22b");
}

TEST(SubstitutedCopy, OfANullPointerIsTheSameText) {
    Wide const string(L"a$NUM$b");
    Wide const copy = string.substitute(static_cast<wchar_t const*>(nullptr), Wide(L"1"));
    EXPECT_EQ(copy.c_str(), string.c_str());
}

TEST(SubstitutedCopy, WithAnUnsetStringRemoves) {
    Wide const string(L"a$NUM$b");
    EXPECT_STREQ(string.substitute(L"$NUM$", Wide()).c_str(), L"ab");
}

TEST(SubstitutedCopy, OfAnUnsetStringIsTheSameText) {
    Wide const string(L"a$NUM$b");
    EXPECT_STREQ(string.substitute(Wide(), Wide(L"1")).c_str(), L"a$NUM$b");
}

TEST(SubstitutedCopy, MayInsertTheReceiverItself) {
    Wide const string(L"<$>");
    EXPECT_STREQ(string.substitute(L"$", string).c_str(), L"<<$>>");
}

TEST(SubstitutedCopy, OfAnEmptyStringIsEmpty) {
    EXPECT_TRUE(Wide().substitute(L"$NUM$", Wide(L"1")).empty());
}

}  // namespace
