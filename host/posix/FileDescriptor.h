#pragma once

#include <unistd.h>

#include <exception>
#include <thread>
#include <utility>

/// An open file of the system, closed at the end. It can be moved.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~FileDescriptor() {
        if (isOpen()) {
            ::close(descriptor_);
        }
    }

    /// Closes the file on another thread, as the system may take long to give back what a removed file holds in memory.
    /// What isn't closed when the process ends is closed by the system.
    void closeElsewhere() noexcept {
        int const descriptor = std::exchange(descriptor_, -1);
        try {
            std::thread([descriptor] { ::close(descriptor); }).detach();
        } catch (std::exception const&) {
            ::close(descriptor);
        }
    }

    [[nodiscard]] bool isOpen() const noexcept { return descriptor_ >= 0; }
    [[nodiscard]] int get() const noexcept { return descriptor_; }

private:
    int descriptor_ = -1;
};
