#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tests/fakes/CallLog.h"
#include "tests/fakes/FailingFileManager.h"

namespace test {

/// The real files of a folder, and remote ones that lie in another. It records what is done to files, names without
/// the folder's, and does what a test says instead.
///
/// Threads  One at a time.
class TransferFiles : public FailingFileManager {
public:
    /// @param folder  is left out of recorded names; it ends in a separator
    TransferFiles(std::shared_ptr<CallLog> calls, std::string folder)
        : calls_(std::move(calls)), folder_(std::move(folder)) {}

    /// What remote names begin with.
    static constexpr char const* store = "far://";

    /// Asked before each copy: its code, or none to let it happen.
    std::function<std::optional<eCopyRC>(std::string const& source, std::string const& destination)> onCopy;
    /// False: every renaming fails.
    bool renames = true;
    /// False: no folder can be made.
    bool makesFolders = true;
    /// What is free on every volume; none: what is really free.
    std::optional<std::uint64_t> freeBytes;

    /// Recorded as "copy source destination replace", with " told" if somebody is told of its progress.
    [[nodiscard]] eCopyRC copyFile(Name const& source, Name const& destination, bool replaceExisting,
                                   CopyProgress progress, void* context) override {
        calls_->add("copy " + shown(source) + " " + shown(destination) + " " +
                    std::to_string(replaceExisting) + (progress != nullptr ? " told" : ""));
        std::optional<eCopyRC> const code =
            onCopy ? onCopy(shown(source), shown(destination)) : std::optional<eCopyRC>();
        return code ? *code
                    : FailingFileManager::copyFile(place(source), destination, replaceExisting, progress,
                                                   context);
    }
    [[nodiscard]] bool renameFile(Name const& from, Name const& to, bool replaceExisting) override {
        calls_->add("rename " + shown(from) + " " + shown(to) + " " + std::to_string(replaceExisting));
        return renames && FailingFileManager::renameFile(from, to, replaceExisting);
    }
    bool deleteFile(Name const& path) override {
        calls_->add("delete " + shown(path));
        return FailingFileManager::deleteFile(path);
    }
    [[nodiscard]] bool createDirectory(Name const& path) override {
        calls_->add("folder " + shown(path));
        return makesFolders && FailingFileManager::createDirectory(path);
    }
    [[nodiscard]] bool isRemote(Name const& path) override { return narrow(path).rfind(store, 0) == 0; }
    [[nodiscard]] std::uint64_t getFileSize(Name const& path) override {
        return FailingFileManager::getFileSize(place(path));
    }
    [[nodiscard]] bool fileExists(Name const& path) override {
        return FailingFileManager::fileExists(place(path));
    }
    [[nodiscard]] Ox::Ptr<iVolume> getVolume(Name const& path) override {
        return freeBytes ? Ox::Ptr<iVolume>(Ox::makePtr<Volume>(*freeBytes))
                         : FailingFileManager::getVolume(path);
    }

    /// A name as it is recorded.
    [[nodiscard]] std::string shown(Name const& name) const {
        std::string const text = narrow(name);
        return text.rfind(folder_, 0) == 0 ? text.substr(folder_.size()) : text;
    }

private:
    class Volume : public iVolume {
    public:
        explicit Volume(std::uint64_t bytes) : bytes_(bytes) {}
        [[nodiscard]] std::uint32_t getBlockSize() const override { return 4096; }
        [[nodiscard]] std::uint64_t getFreeBytes() const override { return bytes_; }

    private:
        std::uint64_t const bytes_;
    };

    /// Where a remote file lies.
    [[nodiscard]] Name place(Name const& name) {
        return isRemote(name) ? wide(folder_ + "remote/" + narrow(name).substr(std::string(store).size()))
                              : name;
    }

    std::shared_ptr<CallLog> const calls_;
    std::string const folder_;
};

}  // namespace test
