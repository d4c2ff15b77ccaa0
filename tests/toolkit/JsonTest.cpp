#include "toolkit/services/Json.h"

#include <gtest/gtest.h>

namespace {

using Text = LightweightString<char>;

Ox::Ptr<JSON::Element> parse(std::string const& text) {
    return JSON::Element::parse(Text(text));
}

TEST(JsonBuilderTest, WritesTextsInTheOrderInWhichTheyCome) {
    JSON::Builder builder;
    builder.startChild(nullptr);
    builder.add("Zebra", Text("one"), true);
    builder.add("Apple", LightweightString<wchar_t>(L"zwölf"), true);
    builder.add("Count", Text("3"), false);
    builder.endChild();
    EXPECT_EQ(builder.asString(), "{\n  \"Zebra\": \"one\",\n  \"Apple\": \"zwölf\",\n  \"Count\": 3\n}\n");
}

TEST(JsonBuilderTest, NestsObjects) {
    JSON::Builder builder;
    builder.startChild(nullptr);
    builder.startChild("inner");
    builder.endChild();
    builder.endChild();
    EXPECT_EQ(builder.asString(), "{\n  \"inner\": {}\n}\n");
}

TEST(JsonBuilderTest, AnEndWithoutABeginningIsHarmless) {
    JSON::Builder builder;
    builder.endChild();
    EXPECT_EQ(builder.asString(), "");
}

TEST(JsonElementTest, ReadsWhatTheBuilderWrote) {
    std::string const awkward = "a \"b\" \\c\n\t\x01 /é 東";
    JSON::Builder builder;
    builder.startChild(nullptr);
    builder.add("key \"x\"", Text(awkward), true);
    builder.endChild();
    Ox::Ptr<JSON::Element> const element = JSON::Element::parse(builder.asString());
    ASSERT_TRUE(element);
    EXPECT_EQ(element->getString("key \"x\""), Text(awkward));
}

TEST(JsonElementTest, EscapesMeanTheirCharacters) {
    Ox::Ptr<JSON::Element> const element = parse(R"({"a":"\u00e9\ud83c\udfac\/\b\f\n\r\t\\\""})");
    ASSERT_TRUE(element);
    EXPECT_EQ(element->getString("a"), "é🎬/\b\f\n\r\t\\\"");
    EXPECT_EQ(parse(R"({"a":"\udfac"})")->getWString("a"), L"\xFFFD");
}

TEST(JsonElementTest, AnAbsentKeyIsEmptyAndSoIsOneThatIsNoText) {
    Ox::Ptr<JSON::Element> const element = parse(R"({"n": 5, "l": ["x", {"y": [1]}], "t": true})");
    ASSERT_TRUE(element);
    EXPECT_EQ(element->getString("nothing"), "");
    EXPECT_EQ(element->getString("n"), "");
    EXPECT_EQ(element->getWString("l"), L"");
    EXPECT_FALSE(element->getChild("t"));
}

TEST(JsonElementTest, OfAKeyThatIsThereTwiceTheLastOneCounts) {
    EXPECT_EQ(parse(R"({"a":"1","a":"2"})")->getString("a"), "2");
    EXPECT_EQ(parse(R"({"a":"1","a":2})")->getString("a"), "");
}

TEST(JsonElementTest, ChildrenAreElements) {
    EXPECT_EQ(parse(R"({"outer":{"inner":"x"}})")->getChild("outer")->getString("inner"), "x");
}

TEST(JsonElementTest, OtherFormsAreRefused) {
    for (char const* const text :
         {"", "{", "}", "[]", "\"a\"", "{\"a\"}", "{\"a\":}", "{\"a\":\"b}", "{\"a\":\"b\",}", "{a:\"b\"}",
          "{\"a\":\"b\"} x", "{\"a\":tru}", "{\"a\":.5}", "{\"a\":\"\\x\"}", "{\"a\":\"\\u12\"}",
          "{\"a\":\"\\ud83c\\u0041\"}", "{\"a\":\"line\nbreak\"}", "{\"a\":[1,]}", "{\"a\":\"\\"}) {
        EXPECT_FALSE(parse(text)) << text;
    }
}

TEST(JsonElementTest, TooDeepATextIsRefusedAndTheStackStaysSmall) {
    std::string deep = "{\"a\":";
    deep += std::string(100000, '[');
    EXPECT_FALSE(parse(deep));
}

}  // namespace
