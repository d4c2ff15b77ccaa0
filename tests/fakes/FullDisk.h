#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>

#include "tests/fakes/ForwardingFileManager.h"

namespace test {

/// A file manager whose files have no room behind so many bytes.
class FullDisk : public ForwardingFileManager {
public:
    explicit FullDisk(std::uint64_t room) : room_(room) {}

    [[nodiscard]] Ox::Ptr<iFile> openFile(Name const& name, std::uint32_t access, std::uint32_t behaviour,
                                          std::uint32_t share, std::uint32_t option) override {
        Ox::Ptr<iFile> const file = real().openFile(name, access, behaviour, share, option);
        return file ? Ox::Ptr<iFile>(Ox::makePtr<FullFile>(file, room_)) : file;
    }

private:
    class FullFile : public iFile {
    public:
        FullFile(Ox::Ptr<iFile> real, std::uint64_t room) : real_(std::move(real)), room_(room) {}
        std::uint32_t read(void* buffer, std::uint32_t byteCount) override {
            return real_->read(buffer, byteCount);
        }
        std::uint32_t write(void const* buffer, std::uint32_t byteCount) override {
            std::uint64_t const place = real_->getPosition();
            std::uint64_t const left = place < room_ ? room_ - place : 0;
            return real_->write(buffer, static_cast<std::uint32_t>(std::min<std::uint64_t>(byteCount, left)));
        }
        bool setPosition(std::uint64_t offset) override { return real_->setPosition(offset); }
        [[nodiscard]] std::uint64_t getPosition() const override { return real_->getPosition(); }

    private:
        Ox::Ptr<iFile> const real_;
        std::uint64_t const room_;
    };

    std::uint64_t const room_;
};

}  // namespace test
