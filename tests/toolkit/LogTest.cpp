#include "toolkit/services/Log.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/fakes/CountingMemoryService.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

/// "Ä漢😀" in both widths.
constexpr wchar_t const* wideText = L"\u00C4\u6F22\U0001F600";
constexpr char const* narrowText = "\xC3\x84\xE6\xBC\xA2\xF0\x9F\x98\x80";

class LogTest : public ::testing::Test {
protected:
    /// What the format and its arguments came to.
    std::string last() { return log_.log().empty() ? "nothing" : log_.log().back(); }
    LogRecorder log_;
};

TEST_F(LogTest, WritesToConsoleAndLog) {
    LogBoth("%d files\n", 3);
    EXPECT_EQ((LogRecorder::Lines{"3 files\n"}), log_.console());
    EXPECT_EQ((LogRecorder::Lines{"3 files\n"}), log_.log());
}

TEST_F(LogTest, WritesToTheLogAlone) {
    Log("quiet");
    EXPECT_TRUE(log_.console().empty());
    EXPECT_EQ("quiet", last());
}

TEST_F(LogTest, WritesToTheConsoleAlone) {
    zorn_printf("loud");
    EXPECT_TRUE(log_.log().empty());
    EXPECT_EQ((LogRecorder::Lines{"loud"}), log_.console());
}

TEST_F(LogTest, WritesAWideTextAsItStandsToConsoleAndLog) {
    LogStringW(LightweightString<wchar_t>(L"100% %s\n"));
    EXPECT_EQ((LogRecorder::Lines{"100% %s\n"}), log_.console());
    EXPECT_EQ((LogRecorder::Lines{"100% %s\n"}), log_.log());
}

TEST_F(LogTest, WritesWideTextAsUtf8InTheCLocale) {
    ASSERT_STREQ("C", std::setlocale(LC_ALL, nullptr));
    Log("<%ls>", wideText);
    EXPECT_EQ(std::string("<") + narrowText + ">", last());
}

TEST_F(LogTest, WritesAWideCharacterAsUtf8) {
    Log("<%lc%lc>", wint_t(0x6F22), wint_t('x'));
    EXPECT_EQ("<\xE6\xBC\xA2x>", last());
}

TEST_F(LogTest, ANameNeverActsAsAFormat) {
    Log("%ls and %s", L"%n%s%d.mov", "100%s%n");
    EXPECT_EQ("%n%s%d.mov and 100%s%n", last());
}

TEST_F(LogTest, ArgumentsAfterAWideTextKeepTheirPlace) {
    Log("%d %ls %s %.2f %lld", 1, wideText, "two", 3.5, 4LL);
    EXPECT_EQ(std::string("1 ") + narrowText + " two 3.50 4", last());
}

TEST_F(LogTest, PadsWideTextByBytes) {
    Log("[%6ls][%-6ls][%*ls]", L"ab", L"ab", -6, L"ab");
    EXPECT_EQ("[    ab][ab    ][ab    ]", last());
}

TEST_F(LogTest, APrecisionCutsNoCharacter) {
    Log("[%.4ls]", wideText);
    EXPECT_EQ("[\xC3\x84]", last());
}

TEST_F(LogTest, APrecisionLetsTextBeUnterminated) {
    wchar_t const unterminated[] = {L'a', L'b', L'c'};
    Log("[%.3ls]", unterminated);
    EXPECT_EQ("[abc]", last());
}

TEST_F(LogTest, ShowsTextThatIsNotThere) {
    char const* volatile narrow = nullptr;
    wchar_t const* volatile wide = nullptr;
    Log("%s %ls", static_cast<char const*>(narrow), static_cast<wchar_t const*>(wide));
    EXPECT_EQ("(null) (null)", last());
}

TEST_F(LogTest, FormatsNumbersOfEveryWidth) {
    Log("%hhd %hd %d %ld %lld %zu %jd %td", static_cast<signed char>(-1), static_cast<short>(-2), -3, -4L,
        -5LL, std::size_t(6), std::intmax_t(-7), std::ptrdiff_t(-8));
    EXPECT_EQ("-1 -2 -3 -4 -5 6 -7 -8", last());
}

TEST_F(LogTest, FormatsUnsignedNumbersOfEveryWidth) {
    Log("%hhu %hu %u %lu %#x %o", static_cast<unsigned char>(255), static_cast<unsigned short>(65535),
        4294967295U, 18446744073709551615UL, 0xBEEFU, 8U);
    EXPECT_EQ("255 65535 4294967295 18446744073709551615 0xbeef 10", last());
}

TEST_F(LogTest, FormatsFlagsWidthsAndPrecisions) {
    Log("[%+05d][%-5d][% d][%*.*f][%5.1s]", 42, 42, 42, 8, 3, 3.14159, "xyz");
    EXPECT_EQ("[+0042][42   ][ 42][   3.142][    x]", last());
}

TEST_F(LogTest, FormatsOtherConversions) {
    Log("%c %g %e %Lf %%", 'x', 0.5, 1.0, 2.0L);
    EXPECT_EQ("x 0.5 1.000000e+00 2.000000 %", last());
}

TEST_F(LogTest, FormatsAnAddress) {
    Log("%p", static_cast<void*>(nullptr));
    EXPECT_EQ("(nil)", last());
}

TEST_F(LogTest, WritesLinesOfAnyLength) {
    std::wstring const name(100'000, L'\u00C4');
    Log("%ls!", name.c_str());
    EXPECT_EQ(200'001U, last().size());
}

TEST_F(LogTest, WritesAnEmptyLine) {
    Log("%s", "");
    EXPECT_EQ("", last());
}

TEST_F(LogTest, LinesOfManyThreadsStayWhole) {
    {
        Threads const threads(4, [] {
            for (int round = 0; round < 200; ++round) {
                Log("%ls %d %s\n", wideText, 7, "end");
            }
        });
    }
    std::string const whole = std::string(narrowText) + " 7 end\n";
    EXPECT_EQ(LogRecorder::Lines(800, whole), log_.log());
}

/// What goes to nobody's sink but the host's own.
class HostLogTest : public ::testing::Test {
protected:
    void logTo(std::string const& path) { setenv("PLAYFILE_LOG", path.c_str(), 1); }
    TemporaryFolder folder_;
};

TEST_F(HostLogTest, AppendsToTheFileThatTheEnvironmentNames) {
    folder_.write("log", "before\n");
    logTo(folder_.file("log"));
    Log("%ls\n", wideText);
    Log("next\n");
    EXPECT_EQ(std::string("before\n") + narrowText + "\nnext\n", folder_.read("log"));
}

TEST_F(HostLogTest, WritesToStandardError) {
    ::testing::internal::CaptureStderr();
    LogBoth("%ls\n", wideText);
    EXPECT_EQ(std::string(narrowText) + "\n", ::testing::internal::GetCapturedStderr());
}

TEST_F(HostLogTest, TellsOnceThatTheFileCannotBeWritten) {
    logTo(folder_.file("missing/log"));
    ::testing::internal::CaptureStderr();
    Log("first\n");
    Log("second\n");
    EXPECT_EQ("The log can't be written to " + folder_.file("missing/log") + "\n",
              ::testing::internal::GetCapturedStderr());
}

}  // namespace
}  // namespace test
