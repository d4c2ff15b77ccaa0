#pragma once

#include "ole/os/OS.h"

namespace test {

/// Hands every file operation on to the manager that was in force when it was made, and is in force
/// itself while it lives. A test overrides the single operations that it is about.
///
/// Threads  Any.
class ForwardingFileManager : public iFileManager {
public:
    using Name = LightweightString<wchar_t>;

    ForwardingFileManager() : real_(OS()->getFileManager()), before_(installFileManager(this)) {}
    ~ForwardingFileManager() override { installFileManager(before_); }
    ForwardingFileManager(ForwardingFileManager const&) = delete;
    ForwardingFileManager& operator=(ForwardingFileManager const&) = delete;

    [[nodiscard]] eCopyRC copyFile(Name const& source, Name const& destination, bool replaceExisting,
                                   CopyProgress progress, void* context) override {
        return real_.copyFile(source, destination, replaceExisting, progress, context);
    }
    [[nodiscard]] bool renameFile(Name const& from, Name const& to, bool replaceExisting) override {
        return real_.renameFile(from, to, replaceExisting);
    }
    bool deleteFile(Name const& path) override { return real_.deleteFile(path); }
    [[nodiscard]] bool fileExists(Name const& path) override { return real_.fileExists(path); }
    [[nodiscard]] bool isRemote(Name const& path) override { return real_.isRemote(path); }
    [[nodiscard]] DirectoryItem getFileInfo(Name const& path) override { return real_.getFileInfo(path); }
    [[nodiscard]] bool createDirectory(Name const& path) override { return real_.createDirectory(path); }
    [[nodiscard]] wchar_t getPathSeparator() const override { return real_.getPathSeparator(); }
    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override {
        return real_.openFile(name, access, behaviour, share, option);
    }
    [[nodiscard]] Ox::Ptr<iVolume> getVolume(Name const& path) override { return real_.getVolume(path); }
    [[nodiscard]] std::uint64_t getFileSize(Name const& path) override { return real_.getFileSize(path); }
    [[nodiscard]] Name getMountedFilename(Name const& name) override {
        return real_.getMountedFilename(name);
    }
    [[nodiscard]] Name getDisplayFilename(Name const& name) override {
        return real_.getDisplayFilename(name);
    }
    void findFiles(Name const& pattern, std::vector<DirectoryItem>& items, bool files,
                   bool folders) override {
        real_.findFiles(pattern, items, files, folders);
    }
    [[nodiscard]] iRemoteStore* findRemoteStore(Name const& name) override {
        return real_.findRemoteStore(name);
    }

protected:
    [[nodiscard]] iFileManager& real() const { return real_; }

private:
    iFileManager& real_;
    iFileManager* const before_;
};

}  // namespace test
