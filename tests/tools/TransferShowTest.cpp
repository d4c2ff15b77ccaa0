/// How transfers are shown.
#include <gtest/gtest.h>

#include "tests/support/TemporaryFolder.h"
#include "toolkit/tasks/LoggerBase.h"
#include "tools/playfile/RateDisplay.h"
#include "tools/playfile/RelocationMeter.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TransferLog.h"

namespace cli {
namespace {

constexpr std::uint64_t mebibyte = 1024 * 1024;

TEST(RateDisplayTest, TellsPartRateAndTimeLeft) {
    EXPECT_EQ(RateDisplay::text(0.5, 20 * mebibyte, 10.0),
              "[##########----------] 50 %  1.0 MiB/s  0:10 left");
    EXPECT_EQ(RateDisplay::text(0.25, 0, 60.0), "[#####---------------] 25 %  3:00 left");
}

TEST(RateDisplayTest, TellsNoRateAtTheBeginning) {
    EXPECT_EQ(RateDisplay::text(0.0, mebibyte, 5.0), "[--------------------] 0 %");
    EXPECT_EQ(RateDisplay::text(0.5, mebibyte, 0.1), "[##########----------] 50 %");
}

TEST(RateDisplayTest, APartBeyondTheWholeIsTheWhole) {
    EXPECT_EQ(RateDisplay::text(1.5, 0, 1.0), "[####################] 100 %  0:00 left");
}

/// Three files of 10, 20 and 70 bytes.
class RelocationMeterTest : public testing::Test {
protected:
    RelocationMeterTest() {
        for (std::uint64_t const size : {10U, 20U, 70U}) {
            plan_.files.push_back({"source", size, "", folder_.file(std::to_string(size))});
        }
        plan_.files.push_back({"source", 1000, "there is a file at its target already", folder_.file("x")});
        plan_.needed = 100;
    }
    void write(int name, std::size_t bytes) { folder_.write(std::to_string(name), std::string(bytes, 'x')); }

    test::TemporaryFolder folder_;
    RelocationPlan plan_;
};

TEST_F(RelocationMeterTest, CountsBytesOfFinishedFilesAndOfTheOneUnderWay) {
    RelocationMeter meter(plan_);
    EXPECT_DOUBLE_EQ(meter.fraction(), 0.0);
    write(10, 10);
    write(20, 5);
    EXPECT_DOUBLE_EQ(meter.fraction(), 0.15);
    write(20, 20);
    write(70, 35);
    EXPECT_DOUBLE_EQ(meter.fraction(), 0.65);
    write(70, 70);
    EXPECT_DOUBLE_EQ(meter.fraction(), 1.0);
}

TEST_F(RelocationMeterTest, PassesOverAFileThatFailed) {
    RelocationMeter meter(plan_);
    write(20, 20);
    EXPECT_DOUBLE_EQ(meter.fraction(), 0.2);
}

TEST(LinkTextTest, IsTakenApartAsItWasMade) {
    LoggerBase::HyperLink const link(L"/out [1]", {L"/out/a (b).mov", L"/out/c\\d.mov"});
    LinkText const parsed = LinkText::parse(narrowName(link.asString()));
    EXPECT_EQ(parsed.label, "/out [1]");
    EXPECT_EQ(parsed.targets, (std::vector<std::string>{"/out/a (b).mov", "/out/c\\d.mov"}));
}

TEST(LinkTextTest, AnythingElseStandsForItself) {
    for (char const* const text : {"/out", "[half", "[a](b", "[a](b) and more", ""}) {
        EXPECT_EQ(LinkText::parse(text).label, text);
        EXPECT_TRUE(LinkText::parse(text).targets.empty());
    }
}

}  // namespace
}  // namespace cli
