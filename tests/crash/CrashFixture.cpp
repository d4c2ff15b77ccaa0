#include "tests/crash/CrashFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "host/sqlite/SqliteDatabase.h"
#include "host/sqlite/SqlitePreferences.h"

namespace test {
namespace {

constexpr char const* markPrefix = "Analysing ";

}  // namespace

CrashFixture::CrashFixture() {
    std::filesystem::create_directory(plugins());
    std::filesystem::create_symlink(PLAYFILE_TEST_PLUGIN_DIR "/slow_open.so", plugins() + "/slow_open.so");
}

std::string CrashFixture::addFile(std::string const& name) {
    folder.write(name, "media");
    return folder.file(name);
}

void CrashFixture::hold(std::string const& file) {
    EXPECT_EQ(mkfifo((file + ".gate").c_str(), 0600), 0);
}

void CrashFixture::letGo(std::string const& file) {
    int const gate = open((file + ".gate").c_str(), O_RDWR | O_CLOEXEC);
    EXPECT_EQ(write(gate, "x", 1), 1);
    close(gate);
}

void CrashFixture::unhold(std::string const& file) {
    std::filesystem::remove(file + ".gate");
}

void CrashFixture::makeCrash(std::string const& file) {
    folder.write(std::filesystem::path(file).filename().string() + ".crash", "");
}

CrashFixture::Process CrashFixture::start(std::vector<std::string> const& what) {
    std::vector<std::string> arguments{store(), plugins()};
    arguments.insert(arguments.end(), what.begin(), what.end());
    return std::make_unique<ChildProcess>("crash_opener", arguments);
}

std::vector<std::string> CrashFixture::run(std::vector<std::string> const& what) {
    Ending const ending = start(what)->waitForEnd();
    EXPECT_EQ(ending.exitCode, 0) << ending.errors;
    return linesOf(ending.output);
}

void CrashFixture::killInside(std::string const& file, std::string const& type) {
    hold(file);
    Process const process = start({type, file});
    std::string line;
    do {
        line = process->readLine();
    } while (!line.empty() && !line.starts_with("inside"));
    EXPECT_EQ(line, "inside " + std::filesystem::path(file).filename().string());
    process->kill();
    EXPECT_EQ(process->waitForEnd().signal, SIGKILL);
    unhold(file);
}

std::set<std::string> CrashFixture::marks() {
    auto const preferences = openSqlitePreferences(fromUTF8(store().c_str()));
    std::set<std::string> names;
    for (LightweightString<char> const& key : preferences->getPreferenceKeys(markPrefix)) {
        if (preferences->getPreference(key, false)) {
            names.insert(std::filesystem::path(key.str()).filename().string());
        }
    }
    return names;
}

void CrashFixture::removeMarks() {
    auto const preferences = openSqlitePreferences(fromUTF8(store().c_str()));
    for (LightweightString<char> const& key : preferences->getPreferenceKeys(markPrefix)) {
        preferences->removePreference(key);
    }
}

bool CrashFixture::isStoreWhole() const {
    SqliteDatabase database(store());
    return database.isOpen() && database.isWhole();
}

std::vector<std::string> linesOf(std::string const& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

}  // namespace test
