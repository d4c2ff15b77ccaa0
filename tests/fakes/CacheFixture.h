#pragma once

#include <memory>
#include <string>
#include <vector>

#include "files/PlayFileCache.h"
#include "gtest/gtest.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/FakeCatalogue.h"
#include "tests/fakes/LogToCalls.h"
#include "tests/fakes/RecordingPreferences.h"
#include "tests/fakes/ScriptedFileManager.h"
#include "tests/fakes/ScriptedReader.h"
#include "tests/fakes/WatchedThreads.h"

/// A world for tests of opening files: fakes of everything that the cache asks, in force while the test
/// runs, with one record of all calls and log lines.
///
/// There are no readers and no files until a test adds them. Idle workers look at their lists every 2 ms.
/// The shared cache is emptied afterwards.
class CacheFixture : public ::testing::Test {
protected:
    CacheFixture();
    ~CacheFixture() override;

    /// Registers a reader; those that are added first are asked first.
    Ox::Ptr<ScriptedReader> addReader(std::string const& name);
    /// Makes a file exist, in the eyes of the file manager.
    void addFile(std::string const& path) { fileManager.addFile(path); }
    /// Makes a file exist and files it under a cookie, as an original.
    Cookie addClip(std::string const& path, CookieType type = 'V', unsigned clip = 1);

    /// Opens through the shared cache, without a clip.
    Ox::Ptr<FileReadInstance> openFile(std::string const& path, OpenType type = OpenType::video,
                                       DecodeFormat const& format = DecodeFormat()) {
        return openIn(*PlayFileCache::Shared(), path, type, format);
    }
    static Ox::Ptr<FileReadInstance> openIn(PlayFileCache& cache, std::string const& path,
                                            OpenType type = OpenType::video,
                                            DecodeFormat const& format = DecodeFormat()) {
        return cache.open(wide(path), Cookie(), format, type, 0);
    }
    /// True if the file has a quarantine mark in the preferences.
    [[nodiscard]] bool isMarked(std::string const& path) const;

    WatchedThreads& threads = WatchedThreads::instance();
    std::shared_ptr<CallLog> const calls = std::make_shared<CallLog>();
    LogToCalls logSink{calls};
    ScriptedFileManager fileManager{calls};
    RecordingPreferences preferences{calls};
    FakeCatalogue catalogue{calls};

private:
    std::vector<Ox::Ptr<ScriptedReader>> readers_;
};

/// What `LogBoth` leaves in the record for one text.
[[nodiscard]] std::vector<std::string> loggedToBoth(std::string const& text);
