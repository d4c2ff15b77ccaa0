#include "toolkit/catalogue/Cookie.h"

#include <gtest/gtest.h>

#include <set>

#include "toolkit/catalogue/OpenType.h"

namespace test {
namespace {

using Wide = LightweightString<wchar_t>;

Ox::UUID uuidOf(std::uint8_t last) {
    Ox::UUID uuid;
    uuid.bytes[0] = 0xAB;
    uuid.bytes[15] = last;
    return uuid;
}

TEST(Cookie, ADefaultOneNamesNothing) {
    EXPECT_FALSE(Cookie().valid());
}

TEST(Cookie, IsWrittenAsClipTypeAndChannel) {
    EXPECT_STREQ("ab000000000000000000000000000001-V007", Cookie(uuidOf(1), 'V', 7).asString().c_str());
}

TEST(Cookie, IsWrittenShortAsTheClipAlone) {
    EXPECT_STREQ("ab000000000000000000000000000001", Cookie(uuidOf(1), 'V', 7).asString(true).c_str());
}

TEST(Cookie, ReadsWhatItWrites) {
    for (CookieType const type : {'E', 'V', 'S', 'I'}) {
        for (int const channel : {0, 1, 99, 255}) {
            Cookie const cookie(Ox::UUID::generate(), type, static_cast<std::uint8_t>(channel));
            EXPECT_EQ(cookie, Cookie(cookie.asWString()));
        }
    }
}

TEST(Cookie, ReadsAClipAloneAsItsEdit) {
    Cookie const cookie(uuidOf(1), 'V', 7);
    EXPECT_EQ(convertCookie(cookie, 'E', Cookie::wholeClip),
              Cookie(Wide(L"ab000000000000000000000000000001"), true));
}

TEST(Cookie, ATextOfAnotherFormNamesNothing) {
    for (wchar_t const* text :
         {L"", L"clip", L"ab000000000000000000000000000001", L"ab000000000000000000000000000001-V256",
          L"ab000000000000000000000000000001-V00x", L"ag000000000000000000000000000001-V007",
          L"ab000000000000000000000000000001-V0071", L"ab000000000000000000000000000001_V007",
          L"ab000000000000000000000000000001-7007"}) {
        EXPECT_FALSE(Cookie(Wide(text)).valid()) << toUTF8(text).c_str();
    }
}

TEST(Cookie, OrdersByClipThenTypeThenChannel) {
    std::set<Cookie> const ordered{Cookie(uuidOf(2), 'E', 0), Cookie(uuidOf(1), 'V', 0),
                                   Cookie(uuidOf(1), 'S', 9), Cookie(uuidOf(1), 'S', 10)};
    std::vector<std::string> texts;
    for (Cookie const& cookie : ordered) {
        texts.push_back(cookie.asString().str().substr(30));
    }
    EXPECT_EQ((std::vector<std::string>{"01-S009", "01-S010", "01-V000", "02-E000"}), texts);
}

TEST(Cookie, ConversionKeepsTheClip) {
    Cookie const cookie = convertCookie(Cookie(uuidOf(1), 'V', 7), 'S', 2);
    EXPECT_EQ(Cookie(uuidOf(1), 'S', 2), cookie);
}

TEST(CookieVec, CopiesShareTheCookies) {
    CookieVec one;
    CookieVec const other = one;
    one.add(Cookie(uuidOf(1), 'V', 0));
    EXPECT_EQ(1U, other.size());
}

TEST(UUID, EachIsNew) {
    std::set<Ox::UUID> made;
    for (int round = 0; round < 1000; ++round) {
        made.insert(Ox::UUID::generate());
    }
    EXPECT_EQ(1000U, made.size());
}

TEST(UUID, IsMarkedAsRandom) {
    Ox::UUID const uuid = Ox::UUID::generate();
    EXPECT_EQ(0x40, uuid.bytes[6] & 0xF0);
    EXPECT_EQ(0x80, uuid.bytes[8] & 0xC0);
}

TEST(OpenType, HasATextForTheLog) {
    EXPECT_STREQ("video", OpenType(1).asString());
    EXPECT_STREQ("audio", OpenType(2).asString());
    EXPECT_STREQ("video and audio", OpenType(3).asString());
    EXPECT_STREQ("unknown", OpenType(0).asString());
    EXPECT_STREQ("other", OpenType(-1).asString());
}

}  // namespace
}  // namespace test
