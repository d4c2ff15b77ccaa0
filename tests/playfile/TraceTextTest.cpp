#include "playfile/TraceText.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

std::string written(LightweightString<wchar_t> const& text) {
    std::string out;
    traceText::appendString(out, text);
    return out;
}

/// What a reader of the JSON text gets.
std::string readBack(std::wstring const& text) {
    return Json::parse(written(LightweightString<wchar_t>(text))).get<std::string>();
}

Json readBack(TraceEvent const& event) {
    std::string out;
    traceText::appendEvent(out, event, 10, 20);
    return Json::parse(out);
}

TEST(TraceText, LeavesPlainCharactersAlone) {
    EXPECT_EQ(written(L"clip 1.mov"), "\"clip 1.mov\"");
}

TEST(TraceText, EscapesQuotesAndBackslashes) {
    EXPECT_EQ(written(L"\"a\\b\""), "\"\\\"a\\\\b\\\"\"");
}

TEST(TraceText, EscapesControlCharacters) {
    EXPECT_EQ(written(L"a\nb\x01\x7f"), "\"a\\u000ab\\u0001\\u007f\"");
}

TEST(TraceText, BearsEveryScript) {
    EXPECT_EQ(readBack(L"Zoë 映像 فيلم"), "Zoë 映像 فيلم");
}

TEST(TraceText, BearsCharactersBeyond16Bits) {
    EXPECT_EQ(written(L"\U0001F3AC"), "\"\\ud83c\\udfac\"");
    EXPECT_EQ(readBack(L"\U0001F3AC\U0010FFFF"), "\U0001F3AC\U0010FFFF");
}

TEST(TraceText, ReplacesWhatIsNoCharacter) {
    std::wstring const text{static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000),
                            static_cast<wchar_t>(-1)};
    EXPECT_EQ(written(LightweightString<wchar_t>(text)), "\"\\ufffd\\ufffd\\ufffd\"");
}

TEST(TraceText, ReplacesMalformedUtf8) {
    std::string out;
    traceText::appendString(out,
                            "a\xff"
                            "b");
    EXPECT_EQ(out, "\"a\\ufffdb\"");
}

TEST(TraceText, TimesAreMicroseconds) {
    TraceEvent event;
    event.phase = TraceEvent::slice;
    event.startNs = 1'234'567'890'123;
    event.lengthNs = 1005;
    std::string out;
    traceText::appendEvent(out, event, 10, 20);
    EXPECT_NE(out.find("\"ts\":1234567890.123,\"dur\":1.005"), std::string::npos) << out;
}

TEST(TraceText, AMomentIsOfItsThread) {
    TraceEvent event;
    event.category = "files";
    event.name = "evicted";
    event.of(L"a.mov").with("media", 0, "video").with("count", -3);
    event.reader = LightweightString<char>("FFmpeg");
    EXPECT_EQ(readBack(event),
              Json::parse(R"({"ph":"i","s":"t","pid":10,"tid":20,"ts":0.0,"cat":"files","name":"evicted",
                              "args":{"media":"video","count":-3,"reader":"FFmpeg","file":"a.mov"}})"));
}

TEST(TraceText, KeepsNoMoreFactsThanThereIsRoomFor) {
    TraceEvent event;
    for (char const* const name : {"a", "b", "c", "d", "e"}) {
        event.with(name, 1);
    }
    EXPECT_EQ(readBack(event)["args"], (Json{{"a", 1}, {"b", 1}, {"c", 1}, {"d", 1}}));
}

}  // namespace
