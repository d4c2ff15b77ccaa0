#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "host/memory/MemoryPreferences.h"
#include "host/sqlite/SqlitePreferences.h"
#include "tests/support/Installed.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Threads.h"
#include "toolkit/services/Preferences.h"

namespace test {
namespace {

using Key = LightweightString<char>;
using Keys = std::vector<Key>;

/// What every store of preferences must do, run on each that there is.
class PreferencesContract : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        preferences_ = GetParam() ? openSqlitePreferences(folder_.name("preferences.db"))
                                  : std::make_unique<MemoryPreferences>();
    }
    EditorPreferences& preferences() { return *preferences_; }

private:
    TemporaryFolder folder_;
    std::unique_ptr<EditorPreferences> preferences_;
};

TEST_P(PreferencesContract, AKeyThatIsNotThereHasItsDefault) {
    EXPECT_TRUE(preferences().getPreference("key", true));
    EXPECT_FALSE(preferences().getPreference("key", false));
}

TEST_P(PreferencesContract, KeepsBothValues) {
    preferences().setPreference("yes", true);
    preferences().setPreference("no", false);
    EXPECT_TRUE(preferences().getPreference("yes", false));
    EXPECT_FALSE(preferences().getPreference("no", true));
}

TEST_P(PreferencesContract, ASecondValueReplacesTheFirst) {
    preferences().setPreference("key", true);
    preferences().setPreference("key", false);
    EXPECT_FALSE(preferences().getPreference("key", true));
}

TEST_P(PreferencesContract, ARemovedKeyHasItsDefaultAgain) {
    preferences().setPreference("key", false);
    preferences().removePreference("key");
    EXPECT_TRUE(preferences().getPreference("key", true));
}

TEST_P(PreferencesContract, RemovingWhatIsNotThereDoesNothing) {
    preferences().removePreference("key");
    EXPECT_EQ(Keys{}, preferences().getPreferenceKeys(""));
}

TEST_P(PreferencesContract, ListsTheKeysOfAPrefixInByteOrder) {
    for (char const* key : {"b", "ab\xC3\xA4", "abz", "a", "ab", "aC"}) {
        preferences().setPreference(key, true);
    }
    EXPECT_EQ((Keys{"ab", "abz", "ab\xC3\xA4"}), preferences().getPreferenceKeys("ab"));
}

TEST_P(PreferencesContract, ListsEverythingForAnEmptyPrefix) {
    preferences().setPreference("b", false);
    preferences().setPreference("a", true);
    EXPECT_EQ((Keys{"a", "b"}), preferences().getPreferenceKeys(""));
}

TEST_P(PreferencesContract, TellsKeysApartThatDifferInCaseOrSpecialCharacters) {
    preferences().setPreference("Key", true);
    preferences().setPreference("key'; DROP TABLE preferences; --", true);
    preferences().setPreference("k%y", true);
    EXPECT_FALSE(preferences().getPreference("key", false));
    EXPECT_EQ((Keys{"k%y"}), preferences().getPreferenceKeys("k%"));
    EXPECT_TRUE(preferences().getPreference("key'; DROP TABLE preferences; --", false));
}

TEST_P(PreferencesContract, TakesKeysOfAnyLength) {
    Key const key(std::string(100'000, 'x'));
    preferences().setPreference(key, true);
    EXPECT_EQ(Keys{key}, preferences().getPreferenceKeys("x"));
}

TEST_P(PreferencesContract, ServesManyThreadsAtOnce) {
    std::atomic<int> thread{0};
    {
        Threads const threads(4, [&] {
            std::string const prefix = std::to_string(thread++) + "-";
            for (int index = 0; index < 50; ++index) {
                Key const key(prefix + std::to_string(index));
                preferences().setPreference(key, true);
                EXPECT_TRUE(preferences().getPreference(key, false));
                if (index % 2 != 0) {
                    preferences().removePreference(key);
                }
            }
        });
    }
    EXPECT_EQ(100U, preferences().getPreferenceKeys("").size());
}

TEST_P(PreferencesContract, IsInForceWhileInstalled) {
    EditorPreferences const* const before = prefs();
    {
        InstalledPreferences const installed(&preferences());
        EXPECT_EQ(&preferences(), prefs());
    }
    EXPECT_EQ(before, prefs());
}

INSTANTIATE_TEST_SUITE_P(Implementations, PreferencesContract, ::testing::Bool(),
                         [](auto const& tested) { return tested.param ? "Sqlite" : "Memory"; });

}  // namespace
}  // namespace test
