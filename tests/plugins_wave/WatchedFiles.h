#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "tests/fakes/ForwardingFileManager.h"

/// A file manager that notes every read of its files and can let reads fall short; in force while it lives.
///
/// Threads  One at a time.
class WatchedFiles : public test::ForwardingFileManager {
public:
    /// Where a read began and how many bytes it was to have.
    using Read = std::pair<std::uint64_t, std::uint32_t>;

    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override {
        Ox::Ptr<iFile> const file = real().openFile(name, access, behaviour, share, option);
        return file ? Ox::Ptr<iFile>(Ox::makePtr<WatchedFile>(file, state_)) : file;
    }

    [[nodiscard]] std::vector<Read> const& reads() const { return state_->reads; }
    void forgetReads() { state_->reads.clear(); }
    /// From now on no read gets more than so many bytes.
    void holdReadsTo(std::uint32_t byteCount) { state_->most = byteCount; }

private:
    struct State {
        std::vector<Read> reads;
        std::uint32_t most = 0xFFFFFFFF;
    };

    class WatchedFile : public iFile {
    public:
        WatchedFile(Ox::Ptr<iFile> real, std::shared_ptr<State> state)
            : real_(std::move(real)), state_(std::move(state)) {}

        std::uint32_t read(void* buffer, std::uint32_t byteCount) override {
            state_->reads.emplace_back(real_->getPosition(), byteCount);
            return real_->read(buffer, std::min(byteCount, state_->most));
        }
        std::uint32_t write(void const* buffer, std::uint32_t byteCount) override {
            return real_->write(buffer, byteCount);
        }
        bool setPosition(std::uint64_t offset) override { return real_->setPosition(offset); }
        [[nodiscard]] std::uint64_t getPosition() const override { return real_->getPosition(); }

    private:
        Ox::Ptr<iFile> const real_;
        std::shared_ptr<State> const state_;
    };

    std::shared_ptr<State> const state_ = std::make_shared<State>();
};
