#include "toolkit/services/Settings.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <string>

#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

class ConfigIntTest : public ::testing::Test {
protected:
    void SetUp() override { setenv("PLAYFILE_SETTINGS", folder_.file("settings").c_str(), 1); }

    void inFile(std::string const& text) { folder_.write("settings", text); }
    static void inEnvironment(char const* text) { setenv("PLAYFILE_key", text, 1); }
    static int get() { return config_int("key", 7, INT_MIN, INT_MAX); }

    TemporaryFolder folder_;
    LogRecorder log_;
};

TEST_F(ConfigIntTest, IsTheDefaultWhereNobodySaysAnything) {
    inFile("");
    EXPECT_EQ(7, get());
}

TEST_F(ConfigIntTest, IsWhatTheFileSays) {
    inFile("# numbers\nother = 1\n  key =\t-12  # the one\n");
    EXPECT_EQ(-12, get());
}

TEST_F(ConfigIntTest, TheEnvironmentGoesBeforeTheFile) {
    inFile("key = 1\n");
    inEnvironment("2");
    EXPECT_EQ(2, get());
}

TEST_F(ConfigIntTest, TheProgramGoesBeforeTheFile) {
    inFile("key = 1\n");
    setConfigInt("key", 3);
    EXPECT_EQ(3, get());
}

TEST_F(ConfigIntTest, TheEnvironmentGoesBeforeTheProgram) {
    setConfigInt("key", 3);
    inEnvironment("2");
    EXPECT_EQ(2, get());
}

TEST_F(ConfigIntTest, AnEnvironmentThatIsNoWholeNumberIsPassedOver) {
    inFile("key = 1\n");
    for (char const* text : {"", "x", "1x", "1.5", "0x10", "--1"}) {
        inEnvironment(text);
        EXPECT_EQ(1, get()) << text;
    }
}

TEST_F(ConfigIntTest, NumbersThatAreTooLargeCountAsTheLargest) {
    inFile("key = 99999999999999999999\n");
    EXPECT_EQ(INT_MAX, get());
    inEnvironment("-99999999999");
    EXPECT_EQ(INT_MIN, get());
}

TEST_F(ConfigIntTest, StaysBetweenItsBounds) {
    setConfigInt("key", 100);
    EXPECT_EQ(10, config_int("key", 7, 1, 10));
    EXPECT_EQ(1, config_int("missing", -5, 1, 10));
}

TEST_F(ConfigIntTest, LinesThatSayNothingAreLoggedWithTheirNumber) {
    inFile("key = 1\nnonsense\nkey = x\n = 5\n");
    EXPECT_EQ(1, get());
    EXPECT_EQ(3U, log_.log().size());
    EXPECT_EQ(1U, log_.count("line 2"));
    EXPECT_EQ(3U, log_.count(folder_.file("settings")));
}

TEST_F(ConfigIntTest, ANamedFileThatCannotBeReadIsLogged) {
    EXPECT_EQ(7, get());
    EXPECT_EQ(1U, log_.count(folder_.file("settings")));
}

TEST_F(ConfigIntTest, TheUsersFolderHoldsTheFileThatNobodyNames) {
    unsetenv("PLAYFILE_SETTINGS");
    std::filesystem::create_directory(folder_.file("playfile"));
    folder_.write("playfile/settings", "key = 5\n");
    setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
    EXPECT_EQ(5, get());
}

TEST_F(ConfigIntTest, WithoutAFolderOfConfigurationsTheHomeFolderHoldsIt) {
    unsetenv("PLAYFILE_SETTINGS");
    std::filesystem::create_directories(folder_.file(".config/playfile"));
    folder_.write(".config/playfile/settings", "key = 6\n");
    setenv("XDG_CONFIG_HOME", "", 1);
    setenv("HOME", folder_.path().c_str(), 1);
    EXPECT_EQ(6, get());
}

}  // namespace
}  // namespace test
