#include "host/sqlite/SqlitePreferences.h"

#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "host/sqlite/SqliteDatabase.h"
#include "ole/os/OS.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"

namespace {

/// Raised with every change of the tables; a file of a later version isn't touched.
constexpr std::int64_t schemaVersion = 1;
constexpr char const* createTables =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS preferences (key TEXT PRIMARY KEY, value INTEGER NOT NULL) WITHOUT ROWID;"
    "PRAGMA user_version = 1;"
    "COMMIT";

/// The database with its statements; none of them is there if the file can't be used.
class Store {
public:
    explicit Store(std::string const& path) : database_(path) {
        if (database_.isOpen() && prepareSchema()) {
            set_ = database_.prepare("INSERT OR REPLACE INTO preferences (key, value) VALUES (?1, ?2)");
            remove_ = database_.prepare("DELETE FROM preferences WHERE key = ?1");
            get_ = database_.prepare("SELECT value FROM preferences WHERE key = ?1");
            list_ = database_.prepare("SELECT key FROM preferences WHERE key >= ?1 ORDER BY key");
        }
    }

    [[nodiscard]] bool isUsable() const { return set_ && remove_ && get_ && list_; }
    [[nodiscard]] bool isDamaged() const { return database_.isDamaged(); }
    [[nodiscard]] std::string lastError() const {
        return isTooNew_ ? "it was written by a later version" : database_.lastError();
    }

    bool set(std::string_view key, bool value) {
        set_.bind(1, key);
        set_.bind(2, std::int64_t(value));
        return finish(set_);
    }
    bool remove(std::string_view key) {
        remove_.bind(1, key);
        return finish(remove_);
    }
    std::optional<bool> get(std::string_view key) {
        get_.bind(1, key);
        std::optional<bool> value;
        if (get_.step() == SQLITE_ROW) {
            value = get_.number(0) != 0;
        }
        get_.reset();
        return value;
    }
    std::vector<LightweightString<char>> list(std::string_view prefix) {
        std::vector<LightweightString<char>> keys;
        list_.bind(1, prefix);
        while (list_.step() == SQLITE_ROW && list_.text(0).starts_with(prefix)) {
            keys.emplace_back(list_.text(0));
        }
        list_.reset();
        return keys;
    }

private:
    bool prepareSchema() {
        SqliteStatement version = database_.prepare("PRAGMA user_version");
        if (!version || version.step() != SQLITE_ROW) {
            return false;
        }
        std::int64_t const found = version.number(0);
        version.reset();
        isTooNew_ = found > schemaVersion;
        return !isTooNew_ && (found == schemaVersion || database_.run(createTables));
    }

    static bool finish(SqliteStatement& statement) {
        bool const isDone = statement.step() == SQLITE_DONE;
        statement.reset();
        return isDone;
    }

    SqliteDatabase database_;
    bool isTooNew_ = false;
    SqliteStatement set_;
    SqliteStatement remove_;
    SqliteStatement get_;
    SqliteStatement list_;
};

/// A name that is free, for a file that is set aside.
LightweightString<wchar_t> freeNameBeside(LightweightString<wchar_t> const& path) {
    for (int number = 1;; ++number) {
        LightweightString<wchar_t> const name =
            path + LightweightString<wchar_t>(L".damaged-" + std::to_wstring(number));
        if (!fileExists(name)) {
            return name;
        }
    }
}

/// The store of a file; one that is damaged is set aside first. The journal that goes with a damaged
/// file goes with it.
std::unique_ptr<Store> openStore(LightweightString<wchar_t> const& path) {
    LightweightString<char> const shown = toUTF8(path);
    auto store = std::make_unique<Store>(shown.str());
    if (!store->isUsable() && store->isDamaged()) {
        LightweightString<wchar_t> const aside = freeNameBeside(path);
        store.reset();
        iFileManager& files = OS()->getFileManager();
        bool const isAside = files.renameFile(path, aside, false);
        static_cast<void>(files.renameFile(path + L"-wal", aside + L"-wal", false));
        files.deleteFile(path + L"-shm");
        LogBoth("Preferences \"%s\" are damaged; %s \"%ls\"\n", shown.c_str(),
                isAside ? "they were set aside as" : "they could not be set aside as", aside.c_str());
        store = std::make_unique<Store>(shown.str());
    }
    if (!store->isUsable()) {
        LogBoth(
            "Preferences \"%s\" can't be used (%s); check the file and its folder. What is set now is "
            "kept in memory only\n",
            shown.c_str(), store->lastError().c_str());
    }
    return store;
}

class SqlitePreferences final : public EditorPreferences {
public:
    explicit SqlitePreferences(LightweightString<wchar_t> const& path)
        : path_(toUTF8(path)), store_(openStore(path)) {}

    void setPreference(LightweightString<char> const& key, bool value) override {
        std::lock_guard const scope(lock_);
        bool const isStored = store_->isUsable() && store_->set(key.view(), value);
        noteMissed(key, value, isStored);
    }
    void removePreference(LightweightString<char> const& key) override {
        std::lock_guard const scope(lock_);
        bool const isStored = store_->isUsable() && store_->remove(key.view());
        noteMissed(key, std::nullopt, isStored);
    }
    [[nodiscard]] bool getPreference(LightweightString<char> const& key, bool defaultValue) override {
        std::lock_guard const scope(lock_);
        auto const found = missed_.find(key);
        if (found != missed_.end()) {
            return found->second.value_or(defaultValue);
        }
        return store_->isUsable() ? store_->get(key.view()).value_or(defaultValue) : defaultValue;
    }
    [[nodiscard]] std::vector<LightweightString<char>> getPreferenceKeys(
        LightweightString<char> const& prefix) override;

private:
    /// Keeps a change that didn't reach the store; one that did outdates what was kept.
    void noteMissed(LightweightString<char> const& key, std::optional<bool> value, bool isStored) {
        if (isStored) {
            missed_.erase(key);
            return;
        }
        missed_[key] = value;
        if (store_->isUsable()) {
            Log("Preferences \"%s\": \"%s\" was not written (%s)\n", path_.c_str(), key.c_str(),
                store_->lastError().c_str());
        }
    }

    std::mutex lock_;
    LightweightString<char> const path_;
    std::unique_ptr<Store> const store_;
    /// Changes that the store doesn't have; no value for a removal.
    std::map<LightweightString<char>, std::optional<bool>> missed_;
};

std::vector<LightweightString<char>> SqlitePreferences::getPreferenceKeys(
    LightweightString<char> const& prefix) {
    std::lock_guard const scope(lock_);
    std::map<LightweightString<char>, bool> keys;
    if (store_->isUsable()) {
        for (LightweightString<char> const& key : store_->list(prefix.view())) {
            keys[key] = true;
        }
    }
    for (auto const& [key, value] : missed_) {
        if (key.view().starts_with(prefix.view())) {
            keys[key] = value.has_value();
        }
    }
    std::vector<LightweightString<char>> result;
    for (auto const& [key, isThere] : keys) {
        if (isThere) {
            result.push_back(key);
        }
    }
    return result;
}

}  // namespace

std::unique_ptr<EditorPreferences> openSqlitePreferences(LightweightString<wchar_t> const& path) {
    LightweightString<wchar_t> const folder = getPath(path);
    if (!folder.empty() && !OS()->getFileManager().createDirectory(folder)) {
        LogBoth("Folder \"%ls\" for preferences can't be made: %ls\n", folder.c_str(),
                OS()->getErrors().getLastErrorText().c_str());
    }
    return std::make_unique<SqlitePreferences>(path);
}

LightweightString<wchar_t> defaultPreferencesPath() {
    std::string folder;
    char const* const configurations = std::getenv("XDG_CONFIG_HOME");
    if (configurations && *configurations) {
        folder = configurations;
    } else if (char const* const home = std::getenv("HOME")) {
        folder = std::string(home) + "/.config";
    }
    return fromUTF8((folder + "/playfile/preferences.db").c_str());
}
