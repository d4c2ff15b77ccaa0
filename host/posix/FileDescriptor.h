#pragma once

#include <unistd.h>

#include <utility>

/// Owns a descriptor of the system; -1 is none.
class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor = -1) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileDescriptor(FileDescriptor const&) = delete;
    FileDescriptor& operator=(FileDescriptor const&) = delete;
    ~FileDescriptor() {
        if (descriptor_ != -1) {
            close(descriptor_);
        }
    }

    [[nodiscard]] int get() const { return descriptor_; }
    explicit operator bool() const { return descriptor_ != -1; }

private:
    int descriptor_;
};
