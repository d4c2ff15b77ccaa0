#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "files/FileReadInstance.h"
#include "tests/fakes/CallLog.h"
#include "tests/fakes/Gate.h"
#include "video/VideoReadRequest.h"

/// How a `ScriptedFile` behaves and what was asked of it; it outlives the file.
///
/// Threads  The settings are made before the file is used; the rest is for any thread.
class FileScript {
public:
    explicit FileScript(std::shared_ptr<CallLog> callLog = std::make_shared<CallLog>())
        : calls(std::move(callLog)) {}

    /// Where each read waits before it does anything.
    Gate readGate{true};
    /// Where the file's destructor waits.
    Gate destroyGate{true};
    /// What a read of a frame answers.
    std::function<unsigned(std::uint32_t frame)> answer = [](std::uint32_t) { return 2U; };
    /// Run inside a read, after the gate.
    std::function<void(Ox::Ptr<VideoReadRequest>&)> duringRead;
    /// Makes the buffer of a read; by default a surface of 4 x 2 gray pixels that hold the frame's
    /// number. An empty one is handed back as it is.
    std::function<Ox::Ptr<FrameBufferRep>(std::uint32_t frame)> makeBuffer;
    /// A read keeps its request, for a script that answers "taken over".
    bool keepsRequests = false;
    std::int32_t origin = 0;
    /// Fills the index information of a frame; empty: there is none.
    std::function<Ox::Ptr<IndexInfoRep>(std::uint32_t fileFrame)> indexInfo;
    configb optionValues;
    /// Set: `queueReadRequest` answers it and queues nothing.
    std::optional<unsigned> queueAnswer;
    /// Changes a size; empty: it isn't touched.
    std::function<void(unsigned value, unsigned& size)> recalculate;
    /// Each file's calls, as "name.purge" and so on.
    std::shared_ptr<CallLog> const calls;

    void noteRead(std::uint32_t frame);
    [[nodiscard]] std::vector<std::uint32_t> framesRead() const;
    void keep(Ox::Ptr<VideoReadRequest> const& request);
    [[nodiscard]] std::vector<Ox::Ptr<VideoReadRequest>> takeKept();
    void dropKept() { static_cast<void>(takeKept()); }
    void noteOptions(configb const& values);
    [[nodiscard]] std::vector<configb> optionsSet() const;

    std::atomic<unsigned> destroyedCount{0};
    std::atomic<std::thread::id> destroyedBy{};
    /// The thread of the latest read.
    std::atomic<std::thread::id> readBy{};

private:
    mutable std::mutex lock_;
    std::vector<std::uint32_t> framesRead_;
    std::vector<Ox::Ptr<VideoReadRequest>> kept_;
    std::vector<configb> optionsSet_;
};

using FileScriptPtr = std::shared_ptr<FileScript>;

/// A file that does what its script says.
class ScriptedFile : public FileReadInstance {
public:
    using FileReadInstance::queueReadRequest;
    using FileReadInstance::readVideo;

    ScriptedFile(std::string const& name, OpenType type, FileScriptPtr script,
                 DecodeFormat const& format = DecodeFormat());
    ~ScriptedFile() override;

    [[nodiscard]] LightweightString<char> getDescription() const override { return "scripted"; }
    void OxFileIxCache_open(Ox::Ptr<IndexInfoRep>& info, unsigned int fileFrame) override;
    [[nodiscard]] std::int32_t getVideoOrigin() const override { return script_->origin; }
    void updateMetadataFrom(Ox::Ptr<PlayFileMetadataRep> const& other) override;
    [[nodiscard]] configb getDecodeOptionValues() override { return script_->optionValues; }
    void setDecodeOptionValues(configb const& values) override;
    unsigned int queueReadRequest(Ox::Ptr<VideoReadRequest>& request) override;
    unsigned int readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) override;
    void recalculateSize(unsigned int value, unsigned int& size) override {
        if (script_->recalculate) {
            script_->recalculate(value, size);
        }
    }
    void purge() override;
    void limitUsage() override;

    [[nodiscard]] FileScript& script() { return *script_; }

private:
    void note(char const* operation) { script_->calls->add(name_ + "." + operation); }

    FileScriptPtr const script_;
    std::string const name_;
};

/// A file of a name that no test looks at, opened for video, with `sampleCount` frames.
[[nodiscard]] Ox::Ptr<FileReadInstance> makeVideoFile(FileScriptPtr const& script,
                                                      std::uint32_t sampleCount = 1000);

/// The default buffer of a read: 4 x 2 gray pixels, the first four bytes of which hold `frame`.
[[nodiscard]] Ox::Ptr<FrameBufferRep> makeNumberedBuffer(std::uint32_t frame);
/// The number that such a buffer holds.
[[nodiscard]] std::uint32_t numberOf(Ox::Ptr<iObject> const& buffer);
