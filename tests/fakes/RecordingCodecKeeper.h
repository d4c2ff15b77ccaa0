#pragma once

#include <memory>

#include "tests/fakes/CallLog.h"
#include "toolkit/plugins/DecoderInfo.h"

/// A keeper of decoders that records when it is asked to let go of them, as "codecs.flush"; registered while
/// it lives.
class RecordingCodecKeeper {
public:
    explicit RecordingCodecKeeper(std::shared_ptr<CallLog> const& calls)
        : keeper_(Ox::makePtr<Keeper>(calls)) {
        CodecPool::addKeeper(keeper_);
    }
    ~RecordingCodecKeeper() { CodecPool::removeKeeper(keeper_); }
    RecordingCodecKeeper(RecordingCodecKeeper const&) = delete;
    RecordingCodecKeeper& operator=(RecordingCodecKeeper const&) = delete;

private:
    class Keeper : public CodecPool::iKeeper {
    public:
        explicit Keeper(std::shared_ptr<CallLog> calls) : calls_(std::move(calls)) {}
        void flushUnreferenced() override { calls_->add("codecs.flush"); }

    private:
        std::shared_ptr<CallLog> const calls_;
    };

    Ox::Ptr<Keeper> const keeper_;
};
