#pragma once

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "files/PlayFileCache.h"
#include "ole/os/OS.h"
#include "ole/os/Shutdown.h"
#include "toolkit/plugins/FileReaderInfo.h"
#include "video/VideoReadRequest.h"

/// A reader of any file, whose frames are one gray pixel each, for programs that come to odd ends.
namespace tiny {

/// How many frames were read.
inline std::atomic<int> framesRead{0};
/// Run at the start of each read, on the worker; set before the first read.
inline std::function<void()> onRead;

/// Writes a line at once, which works at any point of a program's life.
inline void say(std::string const& text) {
    std::string const line = text + "\n";
    [[maybe_unused]] ssize_t const written = write(STDOUT_FILENO, line.data(), line.size());
}

class Pixel : public iMemHolder {
public:
    void* getBuffer() const override { return &value_; }
    std::uint32_t getSize() const override { return sizeof(value_); }
    std::uint32_t getUsed() const override { return sizeof(value_); }
    std::uint32_t setUsed(std::uint32_t) override { return sizeof(value_); }

private:
    mutable std::uint32_t value_ = 0;
};

class File : public FileReadInstance {
public:
    using FileReadInstance::FileReadInstance;
    using FileReadInstance::readVideo;
    LightweightString<char> getDescription() const override { return "one gray pixel"; }
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) override {
        if (onRead) {
            onRead();
        }
        Ox::Image::Surface surface(1, 1, Ox::Image::Format::unknown, 8, 8, Ox::Image::layoutTopDown,
                                   Ox::Image::showForeignMemory, 0);
        surface.setDataPtr(Ox::makePtr<Pixel>());
        buffer = Ox::makePtr<FrameBufferRep>(surface, request->frame);
        ++framesRead;
        return frameRead;
    }
};

class Reader : public Ox::FileReaderInfo {
public:
    Reader() { readerName = LightweightString<char>("tiny"); }
    Ox::Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename, DecodeFormat const& format,
                                       OpenType type) override {
        auto const file = Ox::makePtr<File>(filename, format, type);
        file->metadata->videoSampleCount = 1000;
        file->metadata->videoInfoCount = 1;
        return file;
    }
    bool canOpen(LightweightString<wchar_t> const&, OpenType) override { return true; }
    std::uint32_t getReadableTypes(LightweightString<wchar_t> const&, OpenType, PlayFileMetadataRep*,
                                   Aud::Metadata const&) override {
        return OpenType::video;
    }
};

using FilePtr = Ox::Ptr<FileReadInstance>;
using RequestPtr = Ox::Ptr<VideoReadRequest>;

/// Opens a file through the cache, with this reader.
inline FilePtr open(wchar_t const* name = L"/dev/null") {
    [[maybe_unused]] static bool const isRegistered = Ox::FileReaderInfo::add(Ox::makePtr<Reader>(), 1);
    return PlayFileCache::Shared()->open(name, Cookie(), DecodeFormat(), OpenType::video, 0);
}

inline RequestPtr ask(FilePtr file, unsigned frame, Ox::Ptr<ReadRequestIssuer::Proxy> const& issuer = {}) {
    Ox::Ptr<IndexInfoRep> noUnit;
    auto request =
        Ox::makePtr<VideoReadRequest>(file, noUnit, frame, resultAsDelivered, DecodeFormat(), issuer);
    file->queueReadRequest(request);
    return request;
}

inline std::vector<RequestPtr> askMany(FilePtr const& file, unsigned first, unsigned count) {
    std::vector<RequestPtr> requests;
    for (unsigned i = 0; i < count; ++i) {
        requests.push_back(ask(file, first + i));
    }
    return requests;
}

/// Waits until the read has ended.
inline void await(RequestPtr const& request) {
    for (;;) {
        RequestStatus const status = request->getRequestStatus();
        if (status == requestComplete || status == requestFailed) {
            return;
        }
        OS()->getThreads().sleep(1);
    }
}

inline std::string statusOf(RequestPtr const& request) {
    return "status " + std::to_string(request->getRequestStatus());
}

/// Calls `function` when the process shuts down, at that place in the order.
inline void atShutdown(std::uint32_t order, std::function<void()> function) {
    using Callback = Ox::FunctionCallback<void, Shutdown::eExitType>;
    Shutdown::addCallback(
        Ox::makePtr<Callback>([function = std::move(function)](Shutdown::eExitType const&) { function(); }),
        order);
}

/// Says, as a static object of a program, what was read before it went.
struct CountsAtTheEnd {
    ~CountsAtTheEnd() { say("frames read: " + std::to_string(framesRead)); }
};

}  // namespace tiny
