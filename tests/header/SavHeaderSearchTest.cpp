#include <gtest/gtest.h>

#include <array>

#include "header/SavHeader.h"
#include "tests/support/ChildProcess.h"

namespace test {
namespace {

constexpr char const* fixedText =
    "x f I am x and not f\nnovalue \nthe line after no value\nef ef contains the substring f\n"
    "foo foo begins with the substring f\nf I really am f\n";

/// The value and all behind it; "none" if there is none.
std::string find(char const* text, char const* key) {
    char const* const value = PlayHdrString_seek_value(text, key);
    return value != nullptr ? value : "none";
}

TEST(SavHeaderSearch, FindsAKeyOnlyAsTheFirstWordOfALine) {
    EXPECT_EQ(find(fixedText, "f"), "I really am f\n");
    EXPECT_EQ(find(fixedText, "line"), "none");
    EXPECT_EQ(find(fixedText, "value"), "none");
}

TEST(SavHeaderSearch, GivesTheTextFromTheValueToTheEnd) {
    EXPECT_EQ(find(fixedText, "x"), fixedText + 2);
    EXPECT_EQ(find(fixedText, "the"),
              "line after no value\nef ef contains the substring f\n"
              "foo foo begins with the substring f\nf I really am f\n");
}

TEST(SavHeaderSearch, EndsAtAKeyWithoutValue) {
    EXPECT_EQ(find(fixedText, "novalue"), "none");
    EXPECT_EQ(find("a\nb 1\na 2\n", "a"), "none");
    EXPECT_EQ(find("a \t\v\f\ra 2\n", "a"), "none");
    EXPECT_EQ(find("a ", "a"), "none");
    EXPECT_EQ(find("a", "a"), "none");
}

TEST(SavHeaderSearch, TakesTheFirstOfTwoLines) {
    EXPECT_EQ(find("a 1\na 2\n", "a"), "1\na 2\n");
}

TEST(SavHeaderSearch, KnowsEveryLineEnd) {
    for (char const* const text : {"b 0\na 1", "b 0\ra 1", "b 0\n\ra 1", "b 0\r\na 1"}) {
        EXPECT_EQ(find(text, "a"), "1") << text;
    }
}

TEST(SavHeaderSearch, SkipsWhiteSpaceBeforeAndBehindAKey) {
    EXPECT_EQ(find("\n \t\v\f a \t\v\f1", "a"), "1");
}

TEST(SavHeaderSearch, IsCaseSensitive) {
    EXPECT_EQ(find("A 1\n", "a"), "none");
}

TEST(SavHeaderSearch, FindsNothingInAnEmptyText) {
    EXPECT_EQ(find("", "a"), "none");
    EXPECT_EQ(find(" \n\r ", "a"), "none");
}

TEST(SavHeaderSearch, FindsNoEmptyKey) {
    EXPECT_EQ(find("a 1\n", ""), "none");
}

/// What is copied with a limit, into a buffer whose other bytes are '?'.
std::string copied(char const* source, int limit) {
    std::array<char, 12> bytes{};
    bytes.fill('?');
    hdr_string_copy(bytes.data(), source, limit);
    return {bytes.data(), bytes.size()};
}

TEST(SavHeaderWord, IsCopiedUpToTheLimitAndEndsWithANul) {
    EXPECT_EQ(copied("abcdef", 4), std::string("abcd\0???????", 12));
}

TEST(SavHeaderWord, EndsAtABlankAndAtALineEnd) {
    for (char const* const text : {"ab cd", "ab\ncd", "ab\rcd", "ab"}) {
        EXPECT_EQ(copied(text, 8), std::string("ab\0?????????", 12));
    }
}

TEST(SavHeaderWord, GoesOnOverOtherControlCharacters) {
    EXPECT_EQ(copied("a\tb\v\f\x01", 8), std::string("a\tb\v\f\x01\0?????", 12));
}

TEST(SavHeaderWord, IsOnlyANulWithoutALimit) {
    EXPECT_EQ(copied("abc", 0), std::string("\0???????????", 12));
    EXPECT_EQ(copied("abc", -3), std::string("\0???????????", 12));
}

/// The program that searches the fixed text.
class SearchProgram : public testing::Test {
protected:
    [[nodiscard]] static Ending run(std::vector<std::string> const& keys) {
        return ChildProcess(path, keys).waitForEnd();
    }
    static constexpr char const* path = PLAYFILE_HEADER_SEARCH;
    static std::string headed(std::string const& text) { return std::string(path) + "\n" + text; }
};

TEST_F(SearchProgram, WantsAKey) {
    Ending const ending = run({});
    EXPECT_EQ(ending.exitCode, 2);
    EXPECT_EQ(ending.output, headed("Usage: " + std::string(path) + " <item>\n"));
}

TEST_F(SearchProgram, TellsAValueWithAllBehindIt) {
    Ending const ending = run({"f"});
    EXPECT_EQ(ending.exitCode, 0);
    EXPECT_EQ(ending.output, headed("Item \"f\" = {I really am f\n}\n"));
}

TEST_F(SearchProgram, GoesOnFromTheValueThatItFound) {
    std::string const text = fixedText;
    Ending const ending = run({"x", "f"});
    EXPECT_EQ(ending.output,
              headed("Item \"x\" = {" + text.substr(2) + "}\nItem \"f\" = {" + text.substr(4) + "}\n"));
}

TEST_F(SearchProgram, StaysWhereItIsAtAMiss) {
    Ending const ending = run({"line", "the", "x", "foo"});
    EXPECT_EQ(ending.exitCode, 0);
    EXPECT_EQ(ending.output, headed("Item \"line\" not found.\n"
                                    "Item \"the\" = {line after no value\nef ef contains the substring f\n"
                                    "foo foo begins with the substring f\nf I really am f\n}\n"
                                    "Item \"x\" not found.\n"
                                    "Item \"foo\" = {foo begins with the substring f\nf I really am f\n}\n"));
}

TEST_F(SearchProgram, AnswersForTheLastKeyAlone) {
    EXPECT_EQ(run({"x", "nothing"}).exitCode, 1);
    EXPECT_EQ(run({"nothing", "x"}).exitCode, 0);
}

}  // namespace
}  // namespace test
