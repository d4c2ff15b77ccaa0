#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <limits>
#include <string>

#include "tests/fakes/ForwardingFileManager.h"

namespace test {

/// A file manager whose call of a given number fails, once or from then on. Calls that do something to
/// the disk or look at it count: copy, rename, delete, the existence test, information, volume, size,
/// search, folder and open. A call that fails does nothing.
///
/// Threads  Any.
class FailingFileManager : public ForwardingFileManager {
public:
    enum class eHowLong { once, fromThenOn };

    /// Lets the call of that number from now on fail, 1 for the next.
    void failAt(int number, eHowLong howLong = eHowLong::once) {
        calls_ = 0;
        lastToFail_ = howLong == eHowLong::once ? number : std::numeric_limits<int>::max();
        firstToFail_ = number;
    }
    void stopFailing() { firstToFail_ = std::numeric_limits<int>::max(); }

    /// Called with its number before each call that counts.
    std::function<void(int)> onCall;
    /// What the last call that failed would have done: "copy", "size" and so on.
    [[nodiscard]] std::string lastFailed() const { return lastFailed_.load(); }

    /// How many calls have come since the last `failAt`.
    [[nodiscard]] int getCalls() const { return calls_; }
    /// How many have failed since the last `failAt`: a loop over all calls ends with the first 0.
    [[nodiscard]] int getFailures() const {
        return std::max(0, std::min<int>(calls_, lastToFail_) - firstToFail_ + 1);
    }

    [[nodiscard]] eCopyRC copyFile(Name const& source, Name const& destination, bool replaceExisting,
                                   CopyProgress progress, void* context) override {
        return fails("copy") ? copyFailed
                             : real().copyFile(source, destination, replaceExisting, progress, context);
    }
    [[nodiscard]] bool renameFile(Name const& from, Name const& to, bool replaceExisting) override {
        return !fails("rename") && real().renameFile(from, to, replaceExisting);
    }
    bool deleteFile(Name const& path) override { return !fails("delete") && real().deleteFile(path); }
    [[nodiscard]] bool fileExists(Name const& path) override {
        return !fails("exists") && real().fileExists(path);
    }
    [[nodiscard]] DirectoryItem getFileInfo(Name const& path) override {
        return fails("info") ? DirectoryItem{path} : real().getFileInfo(path);
    }
    [[nodiscard]] bool createDirectory(Name const& path) override {
        return !fails("folder") && real().createDirectory(path);
    }
    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override {
        return fails("open") ? Ox::Ptr<iFile>() : real().openFile(name, access, behaviour, share, option);
    }
    [[nodiscard]] Ox::Ptr<iVolume> getVolume(Name const& path) override {
        return fails("volume") ? Ox::Ptr<iVolume>() : real().getVolume(path);
    }
    [[nodiscard]] std::uint64_t getFileSize(Name const& path) override {
        return fails("size") ? 0 : real().getFileSize(path);
    }
    void findFiles(Name const& pattern, std::vector<DirectoryItem>& items, bool files,
                   bool folders) override {
        if (!fails("find")) {
            real().findFiles(pattern, items, files, folders);
        }
    }

private:
    bool fails(char const* operation) {
        int const number = ++calls_;
        if (onCall) {
            onCall(number);
        }
        bool const doesFail = number >= firstToFail_ && number <= lastToFail_;
        if (doesFail) {
            lastFailed_ = operation;
        }
        return doesFail;
    }

    std::atomic<char const*> lastFailed_{""};
    std::atomic<int> calls_{0};
    std::atomic<int> firstToFail_{std::numeric_limits<int>::max()};
    std::atomic<int> lastToFail_{0};
};

}  // namespace test
