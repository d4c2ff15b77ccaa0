#include "host/sqlite/SqlitePreferences.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "host/sqlite/SqliteDatabase.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

class SqlitePreferencesTest : public ::testing::Test {
protected:
    std::unique_ptr<EditorPreferences> open(std::string const& name = "p.db") {
        return openSqlitePreferences(folder_.name(name));
    }
    /// The names in the folder that begin so.
    std::vector<std::string> filesThatBegin(std::string const& start) {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::directory_iterator(folder_.path())) {
            if (entry.path().filename().string().starts_with(start)) {
                names.push_back(entry.path().filename().string());
            }
        }
        return names;
    }

    TemporaryFolder folder_;
    LogRecorder log_;
};

TEST_F(SqlitePreferencesTest, OutliveTheObject) {
    open()->setPreference("key", true);
    EXPECT_TRUE(open()->getPreference("key", false));
}

TEST_F(SqlitePreferencesTest, AreSeenByOthersBeforeTheCallReturns) {
    auto const one = open();
    auto const another = open();
    one->setPreference("key", true);
    EXPECT_TRUE(another->getPreference("key", false));
    another->removePreference("key");
    EXPECT_FALSE(one->getPreference("key", false));
}

TEST_F(SqlitePreferencesTest, MakeTheirFolder) {
    open("a/b/p.db")->setPreference("key", true);
    EXPECT_TRUE(folder_.holds("a/b/p.db"));
}

TEST_F(SqlitePreferencesTest, AreOfANameInAnyLanguage) {
    open(
        "pr\xC3\xA4"
        "f \xE6\xBC\xA2 %s.db")
        ->setPreference("key", true);
    EXPECT_TRUE(
        folder_.holds("pr\xC3\xA4"
                      "f \xE6\xBC\xA2 %s.db"));
}

TEST_F(SqlitePreferencesTest, SetADamagedFileAsideAndNameIt) {
    folder_.write("p.db", std::string(8192, 'x'));
    auto const preferences = open();
    preferences->setPreference("key", true);
    EXPECT_TRUE(open()->getPreference("key", false));
    EXPECT_EQ(std::string(8192, 'x'), folder_.read("p.db.damaged-1"));
    EXPECT_EQ(1U, log_.count(folder_.file("p.db.damaged-1")));
}

TEST_F(SqlitePreferencesTest, SetEveryDamagedFileAsideUnderItsOwnName) {
    folder_.write("p.db", std::string(8192, 'x'));
    open();
    for (char const* suffix : {"", "-wal", "-shm"}) {
        std::filesystem::remove(folder_.file(std::string("p.db") + suffix));
    }
    folder_.write("p.db", std::string(8192, 'y'));
    open();
    EXPECT_EQ(std::string(8192, 'x'), folder_.read("p.db.damaged-1"));
    EXPECT_EQ(std::string(8192, 'y'), folder_.read("p.db.damaged-2"));
}

TEST_F(SqlitePreferencesTest, LeaveAFileOfALaterVersionAloneAndSayWhatToDo) {
    open()->setPreference("key", true);
    ASSERT_TRUE(SqliteDatabase(folder_.file("p.db")).run("PRAGMA user_version=999"));
    auto const preferences = open();
    preferences->setPreference("other", true);
    EXPECT_TRUE(preferences->getPreference("other", false));
    EXPECT_EQ(1U, log_.count(folder_.file("p.db")));
    EXPECT_EQ(1U, log_.count("later version"));
    EXPECT_TRUE(filesThatBegin("p.db.damaged").empty());
}

TEST_F(SqlitePreferencesTest, StayInMemoryWhereNoFileCanBe) {
    folder_.write("file", "");
    auto const preferences = open("file/p.db");
    preferences->setPreference("key", true);
    preferences->setPreference("gone", true);
    preferences->removePreference("gone");
    EXPECT_TRUE(preferences->getPreference("key", false));
    EXPECT_EQ((std::vector<LightweightString<char>>{"key"}), preferences->getPreferenceKeys(""));
    EXPECT_GE(log_.count(folder_.file("file/p.db")), 1U);
    EXPECT_GE(log_.count("kept in memory"), 1U);
}

TEST_F(SqlitePreferencesTest, KeepInMemoryWhatTheStoreDoesNotTake) {
    auto const preferences = open();
    preferences->setPreference("before", true);
    SqliteDatabase other(folder_.file("p.db"));
    ASSERT_TRUE(other.run("DROP TABLE preferences"));
    preferences->setPreference("key", true);
    EXPECT_TRUE(preferences->getPreference("key", false));
    EXPECT_EQ(1U, log_.count("\"key\" was not written"));
}

TEST_F(SqlitePreferencesTest, LeaveASoundStore) {
    {
        auto const preferences = open();
        for (int index = 0; index < 200; ++index) {
            preferences->setPreference(LightweightString<char>(std::to_string(index)), true);
        }
    }
    EXPECT_TRUE(SqliteDatabase(folder_.file("p.db")).isWhole());
}

TEST_F(SqlitePreferencesTest, LieInTheUsersFolderOfConfigurations) {
    setenv("XDG_CONFIG_HOME", "/configurations", 1);
    EXPECT_STREQ(L"/configurations/playfile/preferences.db", defaultPreferencesPath().c_str());
    setenv("XDG_CONFIG_HOME", "", 1);
    setenv("HOME", "/home/me", 1);
    EXPECT_STREQ(L"/home/me/.config/playfile/preferences.db", defaultPreferencesPath().c_str());
}

}  // namespace
}  // namespace test
