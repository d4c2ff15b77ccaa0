#pragma once

#include "ole/os/OS.h"

namespace test {

/// The operating-system object that was in force when it was made, with single services replaced. It is
/// in force while it lives; no thread may be left by then that goes through it.
///
/// Threads  Services are replaced before threads use it.
class ForwardingOS final : public iOS {
public:
    ForwardingOS() : real_(*OS()) { installOS(this); }
    ~ForwardingOS() { installOS(&real_); }
    ForwardingOS(ForwardingOS const&) = delete;
    ForwardingOS& operator=(ForwardingOS const&) = delete;

    /// Null for the real one's.
    iThreadService* threads = nullptr;
    iFileManager* fileManager = nullptr;
    iMemoryService* memory = nullptr;
    /// 0 for the real number.
    unsigned processorCount = 0;

    [[nodiscard]] iMemoryService& getMemory() override { return memory ? *memory : real_.getMemory(); }
    [[nodiscard]] iThreadService& getThreads() override { return threads ? *threads : real_.getThreads(); }
    [[nodiscard]] iFileManager& getFileManager() override {
        return fileManager ? *fileManager : real_.getFileManager();
    }
    [[nodiscard]] iErrorService& getErrors() override { return real_.getErrors(); }
    [[nodiscard]] iDebugService& getDebug() override { return real_.getDebug(); }
    [[nodiscard]] unsigned getProcessorCount() override {
        return processorCount != 0 ? processorCount : real_.getProcessorCount();
    }

private:
    iOS& real_;
};

}  // namespace test
