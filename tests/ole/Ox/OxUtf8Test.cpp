#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "ole/Ox/OxString.h"

namespace {

std::wstring read(std::string const& bytes) {
    return fromUTF8(bytes.c_str()).str();
}

std::string written(std::wstring const& text) {
    return toUTF8(LightweightString<wchar_t>(text.c_str())).str();
}

TEST(Utf8, IsWrittenInTheFewestBytes) {
    EXPECT_EQ(written(L"\x7F"), "\x7F");
    EXPECT_EQ(written(L"\x80"), "\xC2\x80");
    EXPECT_EQ(written(L"\x7FF"), "\xDF\xBF");
    EXPECT_EQ(written(L"\x800"), "\xE0\xA0\x80");
    EXPECT_EQ(written(L"\xFFFF"), "\xEF\xBF\xBF");
    EXPECT_EQ(written(L"\x10000"), "\xF0\x90\x80\x80");
    EXPECT_EQ(written(L"\x10FFFF"), "\xF4\x8F\xBF\xBF");
}

TEST(Utf8, IsReadFromOneToFourBytes) {
    EXPECT_EQ(read("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xAC"), L"a\u00E4\u20AC\U0001F3AC");
}

TEST(Utf8, ComesBackAsItWasForEveryCodePoint) {
    for (wchar_t code = 1; code <= 0x10FFFF; code += code < 0x3000 ? 1 : 37) {
        bool const isSurrogate = code >= 0xD800 && code <= 0xDFFF;
        if (!isSurrogate) {
            std::wstring const text{L'<', code, L'>'};
            ASSERT_EQ(read(written(text)), text) << std::hex << static_cast<unsigned>(code);
        }
    }
}

TEST(Utf8, IsTheSameInAnyLocale) {
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(written(L"\u00E4"), "\xC3\xA4");
    std::setlocale(LC_ALL, "");
    EXPECT_EQ(written(L"\u00E4"), "\xC3\xA4");
}

TEST(Utf8, OfNothingIsNothing) {
    EXPECT_TRUE(fromUTF8(nullptr).empty());
    EXPECT_TRUE(fromUTF8("").empty());
    EXPECT_TRUE(fromUTF8("abc", 0).empty());
    EXPECT_TRUE(toUTF8(LightweightString<wchar_t>()).empty());
}

TEST(Utf8, IsReadUpToAGivenLength) {
    EXPECT_EQ(fromUTF8("abc", 2).str(), L"ab");
}

TEST(Utf8, CutInTheMiddleOfACharacterIsMalformed) {
    EXPECT_EQ(fromUTF8("a\xE2\x82\xAC", 3).str(), L"a\uFFFD\uFFFD");
}

TEST(Utf8, WritesTheReplacementForWhatNoTextMayHold) {
    EXPECT_EQ(written(std::wstring{static_cast<wchar_t>(0xD800)}), "\xEF\xBF\xBD");
    EXPECT_EQ(written(std::wstring{static_cast<wchar_t>(0xDFFF)}), "\xEF\xBF\xBD");
    EXPECT_EQ(written(std::wstring{static_cast<wchar_t>(0x110000)}), "\xEF\xBF\xBD");
    EXPECT_EQ(written(std::wstring{static_cast<wchar_t>(-1)}), "\xEF\xBF\xBD");
}

TEST(Utf8, ReadsTheReplacementForAByteThatCannotBeFirst) {
    for (char const* byte : {"\x80", "\xBF", "\xC0", "\xC1", "\xF5", "\xFE", "\xFF"}) {
        EXPECT_EQ(read(std::string(byte) + "a"),
                  L"\uFFFD"
                  L"a");
    }
}

TEST(Utf8, ReadsTheReplacementForEachByteOfACharacterThatBreaksOff) {
    EXPECT_EQ(read("\xC3"), L"\uFFFD");
    EXPECT_EQ(read("\xC3"
                   "a"),
              L"\uFFFD"
              L"a");
    EXPECT_EQ(read("\xE2\x82"
                   "a"),
              L"\uFFFD\uFFFD"
              L"a");
    EXPECT_EQ(read("\xF0\x9F\x8E"
                   "a"),
              L"\uFFFD\uFFFD\uFFFD"
              L"a");
}

TEST(Utf8, GoesOnWithTheCharacterThatBreaksIntoAnother) {
    EXPECT_EQ(read("\xE2\xC3\xA4"), L"\uFFFD\u00E4");
}

TEST(Utf8, ReadsNoOverlongForm) {
    EXPECT_EQ(read("\xC0\x80"), L"\uFFFD\uFFFD");
    EXPECT_EQ(read("\xE0\x80\xAF"), L"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(read("\xF0\x80\x80\xAF"), L"\uFFFD\uFFFD\uFFFD\uFFFD");
}

TEST(Utf8, ReadsNoSurrogate) {
    EXPECT_EQ(read("\xED\xA0\x80"), L"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(read("\xED\xBF\xBF"), L"\uFFFD\uFFFD\uFFFD");
    EXPECT_EQ(read("\xED\x9F\xBF"), L"\uD7FF");
}

TEST(Utf8, ReadsNothingAboveTheLastCodePoint) {
    EXPECT_EQ(read("\xF4\x90\x80\x80"), L"\uFFFD\uFFFD\uFFFD\uFFFD");
}

}  // namespace
