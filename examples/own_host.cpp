/// A host of your own: a program that brings its own catalogue, preferences, log and file manager.
///
///   example_own_host PLUGIN_FOLDER FILE
///
/// An editor has such services already. It puts an adapter for each in force before it uses the
/// library; whatever it leaves out is served by the host that comes with the library. Here the
/// catalogue knows one clip, the preferences lie in a map, log lines go to standard output with a mark,
/// and the file manager counts the files that it opens and leaves the work to the one before it.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <future>
#include <map>
#include <mutex>

#include "files/PlayFileCache.h"
#include "ole/os/OS.h"
#include "playfile/playfile.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/plugins/Plugin.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Preferences.h"
#include "video/VideoReadRequest.h"

namespace {

/// Knows the file of one clip.
class OneClip : public SystemCache {
public:
    OneClip(Cookie const& clip, LightweightString<wchar_t> file) : clip_(clip), file_(std::move(file)) {}

    [[nodiscard]] bool findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                         DecodeFormat const& format) override {
        if (cookie.uuid() != clip_.uuid() || cookie.type() != clip_.type() || format.level != levelOriginal) {
            return false;
        }
        filename = file_;
        return true;
    }

private:
    Cookie const clip_;
    LightweightString<wchar_t> const file_;
};

/// Preferences that end with the process, so that marks of crashed opens don't outlive it.
class MapPreferences : public EditorPreferences {
public:
    void setPreference(LightweightString<char> const& key, bool value) override {
        std::lock_guard const lock(mutex_);
        values_[key] = value;
    }
    void removePreference(LightweightString<char> const& key) override {
        std::lock_guard const lock(mutex_);
        values_.erase(key);
    }
    [[nodiscard]] bool getPreference(LightweightString<char> const& key, bool defaultValue) override {
        std::lock_guard const lock(mutex_);
        auto const found = values_.find(key);
        return found == values_.end() ? defaultValue : found->second;
    }
    [[nodiscard]] std::vector<LightweightString<char>> getPreferenceKeys(
        LightweightString<char> const& prefix) override {
        std::lock_guard const lock(mutex_);
        std::vector<LightweightString<char>> keys;
        for (auto const& [key, value] : values_) {
            if (key.view().starts_with(prefix.view())) {
                keys.push_back(key);
            }
        }
        return keys;
    }

private:
    std::mutex mutex_;
    std::map<LightweightString<char>, bool> values_;
};

/// Marks every line and writes it to standard output.
class MarkedLog : public iLogSink {
public:
    void writeToConsole(LightweightString<char> const&) override {}
    void writeToLog(LightweightString<char> const& text) override { std::printf("[log] %s", text.c_str()); }
};

/// Counts what is opened; everything else is done by another file manager.
class CountingFiles : public iFileManager {
public:
    using Name = LightweightString<wchar_t>;

    explicit CountingFiles(iFileManager& other) : other_(other) {}

    [[nodiscard]] unsigned openedCount() const { return opened_; }

    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override {
        ++opened_;
        return other_.openFile(name, access, behaviour, share, option);
    }
    [[nodiscard]] eCopyRC copyFile(Name const& source, Name const& destination, bool replaceExisting,
                                   CopyProgress progress, void* context) override {
        return other_.copyFile(source, destination, replaceExisting, progress, context);
    }
    [[nodiscard]] bool renameFile(Name const& from, Name const& to, bool replaceExisting) override {
        return other_.renameFile(from, to, replaceExisting);
    }
    bool deleteFile(Name const& path) override { return other_.deleteFile(path); }
    [[nodiscard]] bool fileExists(Name const& path) override { return other_.fileExists(path); }
    [[nodiscard]] bool isRemote(Name const& path) override { return other_.isRemote(path); }
    [[nodiscard]] DirectoryItem getFileInfo(Name const& path) override { return other_.getFileInfo(path); }
    [[nodiscard]] bool createDirectory(Name const& path) override { return other_.createDirectory(path); }
    [[nodiscard]] wchar_t getPathSeparator() const override { return other_.getPathSeparator(); }
    [[nodiscard]] Ox::Ptr<iVolume> getVolume(Name const& path) override { return other_.getVolume(path); }
    [[nodiscard]] std::uint64_t getFileSize(Name const& path) override { return other_.getFileSize(path); }
    [[nodiscard]] Name getMountedFilename(Name const& name) override {
        return other_.getMountedFilename(name);
    }
    [[nodiscard]] Name getDisplayFilename(Name const& name) override {
        return other_.getDisplayFilename(name);
    }
    void findFiles(Name const& pattern, std::vector<DirectoryItem>& items, bool files,
                   bool folders) override {
        other_.findFiles(pattern, items, files, folders);
    }

private:
    iFileManager& other_;
    std::atomic<unsigned> opened_{0};
};

/// Lets a thread wait for the end of one read.
class Waiter : public ReadRequestIssuer {
public:
    ~Waiter() override { withdraw(); }
    void requestCompleted(Ox::Ptr<iObject>&, RequestStatus status) override { end_.set_value(status); }

    /// Who joins a read that is just ending, or one that has failed and is still held, isn't called: so
    /// the request's status is looked at, too.
    RequestStatus waitFor(VideoReadRequest const& request) {
        std::future<RequestStatus> called = end_.get_future();
        while (called.wait_for(lookInterval) != std::future_status::ready) {
            RequestStatus const status = request.getRequestStatus();
            if (status == requestComplete || status == requestFailed) {
                return status;
            }
        }
        return called.get();
    }

private:
    static constexpr std::chrono::milliseconds lookInterval{20};

    std::promise<RequestStatus> end_;
};

/// Reads frame 0 of the clip and says how large it is; false if there is no such frame.
bool showFirstFrame(Cookie const& clip) {
    Waiter waiter;
    Ox::Ptr<VideoReadRequest> request;
    OxResult const result = PlayFileCache::Shared()->videoReadRequest(
        request, clip, 0, false, resultDecompressed, DecodeFormat::getDefault(), waiter.getProxy());
    if (result != oxSuccess || waiter.waitFor(*request) != requestComplete) {
        return false;
    }
    Ox::Image::Surface picture;
    request->getResultBuffer()->getSurface(0, picture);
    // A file may be decoded in runs: then the read ends before its picture is there, if it ever comes.
    if (picture.wait(iThreadEvent::noTimeLimit) != Ox::Image::Surface::waitFinished || !picture.valid()) {
        return false;
    }
    std::printf("frame 0 is %u x %u\n", picture.getWidth(), picture.getHeight());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: example_own_host PLUGIN_FOLDER FILE\n");
        return 2;
    }
    Cookie const clip(Ox::UUID::generate(), 'V', 0);
    OneClip catalogue(clip, fromUTF8(argv[2]));
    MapPreferences preferences;
    MarkedLog log;
    CountingFiles files(OS()->getFileManager());
    installLogSink(&log);
    installFileManager(&files);
    SystemCache::install(&catalogue);
    installPreferences(&preferences);

    playfile_init();
    loadPlugins(fromUTF8(argv[1]));
    bool const isShown = showFirstFrame(clip);
    std::printf("%u files were opened through this host's file manager\n", files.openedCount());

    // What was put in force lives on this stack, so the library is through with it before that goes.
    playfile_exit();
    installPreferences(nullptr);
    SystemCache::install(nullptr);
    installFileManager(nullptr);
    installLogSink(nullptr);
    return isShown ? 0 : 1;
}
