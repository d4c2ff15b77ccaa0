#pragma once

#include <memory>
#include <string>
#include <vector>

#include "files/FileWriteInstance.h"
#include "tests/fakes/CallLog.h"
#include "toolkit/plugins/FileWriterInfo.h"

/// What a scripted writer's files answer; all of them share it.
struct WriteScript {
    std::uint32_t audioStatus = oxSuccess;
    std::uint32_t frameStatus = oxSuccess;
    /// The backlog that is told, look by look; behind the end the last one is told on.
    std::vector<std::uint64_t> backlog{0};
};

/// A file that takes everything as its script says, and records it.
class ScriptedWriteFile : public FileWriteInstance {
public:
    ScriptedWriteFile(LightweightString<wchar_t> const& name, std::shared_ptr<CallLog> calls,
                      std::shared_ptr<WriteScript> script)
        : FileWriteInstance(name), calls_(std::move(calls)), script_(std::move(script)) {}

    [[nodiscard]] LightweightString<char> getDescription() const override { return "a script"; }
    std::uint32_t writeAudioSamples(Ox::Ptr<iMemHolder>& data, Callback) override {
        calls_->add("writer.audio " + std::to_string(data->getUsed()));
        return script_->audioStatus;
    }
    void reportWriteError(std::uint32_t status) override {
        calls_->add("writer.error " + std::to_string(status));
    }
    std::uint32_t writeFrameData(Ox::Image::Surface const&) override {
        calls_->add("writer.frame");
        return script_->frameStatus;
    }
    [[nodiscard]] std::uint64_t getWriteBacklog() override {
        calls_->add("writer.backlog");
        std::size_t const last = script_->backlog.size() - 1;
        return script_->backlog[looks_ < last ? looks_++ : last];
    }

protected:
    std::shared_ptr<CallLog> const calls_;
    std::shared_ptr<WriteScript> const script_;

private:
    std::size_t looks_ = 0;
};

/// A writer with a way of its own for captured frames.
class OwnWayWriteFile final : public ScriptedWriteFile {
public:
    using ScriptedWriteFile::ScriptedWriteFile;
    std::uint32_t writeSurface(Ox::Ptr<CapturePacket>&) override {
        calls_->add("writer.surface");
        return script_->frameStatus;
    }
};

/// A writer of one format, in the registry while it lives.
class ScriptedWriter : public Ox::FileWriterInfo {
public:
    ScriptedWriter(std::string format, std::shared_ptr<CallLog> calls)
        : format_(std::move(format)), calls_(std::move(calls)) {}

    std::vector<LightweightString<wchar_t>> extensions;
    /// What opening answers.
    OxResult openResult = oxSuccess;
    /// True: even a failed opening leaves a file in the caller's pointer.
    bool leavesAFile = false;
    std::shared_ptr<WriteScript> const script = std::make_shared<WriteScript>();

    [[nodiscard]] std::vector<LightweightString<wchar_t>> getExtensions(
        LightweightString<char> const& format) const override {
        return format.view() == format_ ? extensions : std::vector<LightweightString<wchar_t>>();
    }
    [[nodiscard]] bool canWrite(Ox::FileWriterParams const& params) const override {
        return params.format.view() == format_;
    }
    OxResult openFile(LightweightString<wchar_t> const& filename, Ox::FileWriterParams const&,
                      Ox::Ptr<FileWriteInstance>& file) override {
        calls_->add("writer.open " + narrow(filename));
        if (openResult == oxSuccess || leavesAFile) {
            file = Ox::makePtr<ScriptedWriteFile>(filename, calls_, script);
        }
        return openResult;
    }

private:
    std::string const format_;
    std::shared_ptr<CallLog> const calls_;
};
