/// 64 threads on 1000 real files through the shared cache, whose bounds are 2 and 4.
#include <atomic>
#include <filesystem>
#include <mutex>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "files/PlayFileCache.h"
#include "gtest/gtest.h"
#include "host/memory/MemoryCatalogue.h"
#include "plugins/synth/SynthCode.h"
#include "tests/fakes/FakeCatalogue.h"
#include "tests/fakes/LogToCalls.h"
#include "tests/fakes/RecordingIssuer.h"
#include "tests/fakes/WatchedThreads.h"
#include "tests/support/SynthPlugin.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/plugins/FileReaderInfo.h"
#include "video/VideoReadRequest.h"

namespace {

constexpr unsigned threadCount = 64;
constexpr unsigned fileCount = 1000;
/// Files that a quarter of all reads go to, so that threads meet on one file.
constexpr unsigned busyFileCount = 4;
constexpr unsigned readsPerThread = 50;
constexpr unsigned framesPerFile = 10;

/// Passes everything to another reader, and counts opens of one name that overlap.
class CheckingReader : public Ox::FileReaderInfo {
public:
    explicit CheckingReader(Ox::Ptr<Ox::FileReaderInfo> real) : real_(std::move(real)) {
        readerName = "checking";
    }
    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) override {
        enter(narrow(filename));
        auto file = real_->openFile(filename, format, type);
        leave(narrow(filename));
        return file;
    }
    bool canOpen(LightweightString<wchar_t> const& filename, OpenType type) override {
        return real_->canOpen(filename, type);
    }
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const& filename, OpenType type,
                                   PlayFileMetadataRep* metadata, Aud::Metadata const& stream) override {
        return real_->getReadableTypes(filename, type, metadata, stream);
    }
    std::atomic<unsigned> overlapCount{0};
    std::atomic<unsigned> openCount{0};

private:
    void enter(std::string const& name) {
        std::lock_guard const scope(lock_);
        ++openCount;
        if (!inside_.insert(name).second) {
            ++overlapCount;
        }
    }
    void leave(std::string const& name) {
        std::lock_guard const scope(lock_);
        inside_.erase(name);
    }

    Ox::Ptr<Ox::FileReaderInfo> const real_;
    std::mutex lock_;
    std::set<std::string> inside_;
};

class ManyFilesTest : public ::testing::Test {
protected:
    ManyFilesTest() {
        EXPECT_TRUE(test::loadSynthPlugin());
        reader = Ox::makePtr<CheckingReader>(Ox::FileReaderInfo::getFileReaders(0));
        Ox::FileReaderInfo::add(reader, 0);
        for (unsigned file = 0; file < fileCount; ++file) {
            auto const path = folder.write(
                "clip" + std::to_string(file) + "_64x32_25fps_gray.synth",
                "frames = " + std::to_string(framesPerFile) + "\norigin = " + std::to_string(file * 100));
            MemoryCatalogue::instance().add(makeCookie(file), path);
        }
    }
    ~ManyFilesTest() override { Ox::FileReaderInfo::remove(reader); }

    static std::size_t descriptorCount() {
        std::filesystem::directory_iterator const entries("/proc/self/fd");
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }
    /// Waits for the end of a read: the call, or the status, which alone comes for an issuer that was
    /// merged in between the calls and the status.
    static void waitForEnd(RecordingIssuer& issuer, VideoReadRequest const& request) {
        constexpr unsigned lookAgainMs = 5;
        while (!issuer.waitForCall(lookAgainMs) && request.getRequestStatus() != requestComplete &&
               request.getRequestStatus() != requestFailed) {
        }
    }
    /// Reads one frame and checks that it is the right one of the right file.
    void readOne(unsigned file, unsigned frame) {
        RecordingIssuer issuer;
        Ox::Ptr<VideoReadRequest> request;
        OxResult const result = PlayFileCache::Shared()->videoReadRequest(
            request, makeCookie(file), static_cast<int>(frame), false, resultDecompressed,
            DecodeFormat::getDefault(), issuer.getProxy());
        if (result != oxSuccess) {
            ++wrongCount;
            return;
        }
        waitForEnd(issuer, *request);
        Ox::Image::Surface picture;
        Ox::Ptr<FrameBufferRep> const buffer = request->getResultBuffer();
        if (!buffer || !buffer->getSurface(0, picture) || SynthCode::read(picture) != file * 100 + frame) {
            ++wrongCount;
        }
    }
    void readMany(unsigned seed) {
        std::mt19937 random(seed);
        for (unsigned i = 0; i < readsPerThread; ++i) {
            unsigned const file = random() % (random() % 4 == 0 ? busyFileCount : fileCount);
            readOne(file, random() % framesPerFile);
        }
    }

    std::shared_ptr<CallLog> const calls = std::make_shared<CallLog>();
    LogToCalls const log{calls};
    WatchedThreads& threads = WatchedThreads::instance();
    test::TemporaryFolder const folder;
    Ox::Ptr<CheckingReader> reader;
    std::atomic<unsigned> wrongCount{0};
};

TEST_F(ManyFilesTest, OpenOneAtATimeAndLeaveNoDescriptor) {
    std::size_t const before = descriptorCount();
    std::vector<std::thread> readers;
    for (unsigned i = 0; i < threadCount; ++i) {
        readers.emplace_back([this, i] { readMany(i); });
    }
    for (std::thread& thread : readers) {
        thread.join();
    }
    ASSERT_TRUE(threads.waitUntilAllIdle());
    PlayFileCache::Shared()->limitUsage();
    EXPECT_LE(PlayFileCache::Shared()->getOpenCount(), 2U);
    EXPECT_EQ(descriptorCount(), before + PlayFileCache::Shared()->getOpenCount());
    PlayFileCache::Shared()->purge();
    EXPECT_EQ(PlayFileCache::Shared()->getOpenCount(), 0U);
    EXPECT_EQ(descriptorCount(), before);
    EXPECT_EQ(wrongCount, 0U);
    EXPECT_EQ(reader->overlapCount, 0U);
    EXPECT_GE(reader->openCount, fileCount);
}

}  // namespace
