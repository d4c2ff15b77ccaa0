#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "ole/os/FileManager.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/Gate.h"

/// A file manager of files that exist because a test says so; in force while it lives.
///
/// It records the operations that opening a file uses, as "fm.exists name" and so on; the others do
/// nothing.
///
/// Threads  Any; what exists is said before it is asked for.
class ScriptedFileManager : public iFileManager {
public:
    explicit ScriptedFileManager(std::shared_ptr<CallLog> calls);
    ~ScriptedFileManager() override;

    void addFile(std::string const& name) { files_.insert(name); }
    void removeFile(std::string const& name) { files_.erase(name); }
    /// Where every existence test waits.
    Gate existsGate{true};
    /// False makes `openFile` answer empty.
    bool opensFiles = true;
    /// Run when a handle is released that was opened afterwards.
    std::function<void()> onRelease;
    /// False makes every renaming fail.
    bool renames = true;
    /// What every deleting answers.
    bool deletes = false;
    /// The size of every file that exists.
    std::uint64_t fileSize = 0;
    /// Renamings that succeed before the others fail.
    int renamesAtMost = 1000;
    /// What names in remote places begin with; empty: no name is remote.
    std::string remotePrefix;
    /// Who serves them.
    iRemoteStore* remoteStore = nullptr;
    /// Makes the mounted name of a name; as it comes: the same.
    std::function<std::string(std::string)> mount = [](std::string name) { return name; };
    /// Makes the display form of a name; as it comes: the same.
    std::function<std::string(std::string)> display = [](std::string name) { return name; };

    eCopyRC copyFile(LightweightString<wchar_t> const&, LightweightString<wchar_t> const&, bool, CopyProgress,
                     void*) override {
        return copyFailed;
    }
    /// Recorded as "fm.rename from to replace".
    bool renameFile(LightweightString<wchar_t> const& from, LightweightString<wchar_t> const& to,
                    bool replaceExisting) override {
        calls_->add("fm.rename " + narrow(from) + " " + narrow(to) + " " + std::to_string(replaceExisting));
        return renames && renamesAtMost-- > 0;
    }
    /// Recorded as "fm.delete name".
    bool deleteFile(LightweightString<wchar_t> const& path) override {
        calls_->add("fm.delete " + narrow(path));
        return deletes;
    }
    bool fileExists(LightweightString<wchar_t> const& path) override;
    /// Recorded as "fm.isRemote name" where a test has names of remote places.
    bool isRemote(LightweightString<wchar_t> const& path) override;
    iRemoteStore* findRemoteStore(LightweightString<wchar_t> const&) override { return remoteStore; }
    DirectoryItem getFileInfo(LightweightString<wchar_t> const&) override { return {}; }
    bool createDirectory(LightweightString<wchar_t> const&) override { return false; }
    wchar_t getPathSeparator() const override { return L'/'; }
    Ox::Ptr<iFile> openFile(LightweightString<wchar_t> const& name, std::uint32_t access,
                            std::uint32_t behaviour, std::uint32_t share, std::uint32_t option) override;
    Ox::Ptr<iVolume> getVolume(LightweightString<wchar_t> const&) override { return {}; }
    std::uint64_t getFileSize(LightweightString<wchar_t> const& path) override {
        return files_.count(narrow(path)) != 0 ? fileSize : 0;
    }
    void findFiles(LightweightString<wchar_t> const&, std::vector<DirectoryItem>&, bool, bool) override {}
    LightweightString<wchar_t> getMountedFilename(LightweightString<wchar_t> const& name) override;
    LightweightString<wchar_t> getDisplayFilename(LightweightString<wchar_t> const& name) override;

private:
    std::shared_ptr<CallLog> const calls_;
    std::set<std::string> files_;
    iFileManager* const old_;
};
