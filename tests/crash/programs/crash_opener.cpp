/// Opens files with the preferences in a store on disk, and may be killed at any instant.
///
///     STORE PLUGINS ask FILE                 says whether the file is marked
///     STORE PLUGINS video|audio FILE         opens it once and says how it went
///     STORE PLUGINS churn COUNT FILE...      opens and closes the files in turn, COUNT times in all
#include <unistd.h>

#include <memory>
#include <string>

#include "files/PlayFileCache.h"
#include "files/QuarantinedFiles.h"
#include "host/sqlite/SqlitePreferences.h"
#include "toolkit/plugins/Plugin.h"

namespace {

void say(std::string const& text) {
    std::string const line = text + "\n";
    [[maybe_unused]] ssize_t const written = write(STDOUT_FILENO, line.data(), line.size());
}

LightweightString<wchar_t> wide(char const* text) {
    return fromUTF8(text);
}

void sayWhetherMarked(char const* file) {
    say(QuarantinedFiles::contains(wide(file)) ? "marked" : "not marked");
}

bool openFile(char const* file, OpenType type) {
    return bool(PlayFileCache::Shared()->open(wide(file), Cookie(), DecodeFormat(), type, 0));
}

void openOnce(char const* file, OpenType type) {
    sayWhetherMarked(file);
    say(openFile(file, type) ? "opened" : "failed");
    sayWhetherMarked(file);
}

void churn(int count, char** files) {
    char** next = files;
    for (int i = 0; i < count; ++i) {
        std::string const path(*next);
        std::string const name = path.substr(path.rfind('/') + 1);
        say("begin " + name);
        bool const isOpen = openFile(path.c_str(), OpenType::video);
        say((isOpen ? "end " : "failed ") + name);
        PlayFileCache::Shared()->closeAll();
        next = *(next + 1) ? next + 1 : files;
    }
}

}  // namespace

int main(int, char** arguments) {
    static std::unique_ptr<EditorPreferences> const preferences = openSqlitePreferences(wide(arguments[1]));
    installPreferences(preferences.get());
    loadPlugins(wide(arguments[2]));
    std::string const what(arguments[3]);
    if (what == "ask") {
        sayWhetherMarked(arguments[4]);
    } else if (what == "churn") {
        churn(std::stoi(arguments[4]), arguments + 5);
    } else {
        openOnce(arguments[4], what == "audio" ? OpenType::audio : OpenType::video);
    }
    installPreferences(nullptr);
}
