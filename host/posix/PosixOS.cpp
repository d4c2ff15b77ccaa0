#include "host/posix/PosixOS.h"

#include <execinfo.h>
#include <sched.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>

#include "host/posix/PosixFileManager.h"
#include "host/posix/PosixThreadService.h"
#include "ole/os/Immortal.h"

namespace {

constinit std::atomic<iFileManager*> installedFileManager{nullptr};

class PosixErrors final : public iErrorService {
public:
    [[nodiscard]] OxResult getLastError() const override {
        return systemErrorBase + static_cast<OxResult>(errno);
    }
    [[nodiscard]] LightweightString<wchar_t> getLastErrorText() const override {
        return fromUTF8(std::generic_category().message(errno).c_str());
    }
};

class PosixDebug final : public iDebugService {
public:
    [[nodiscard]] LightweightString<char> takeStackTrace() const override {
        std::array<void*, mostFrames> frames{};
        int const count = backtrace(frames.data(), mostFrames);
        std::unique_ptr<char*, decltype(&std::free)> const lines(backtrace_symbols(frames.data(), count),
                                                                 &std::free);
        std::string text;
        for (int i = 0; lines && i < count; ++i) {
            text.append(lines.get()[i]).append("\n");
        }
        return LightweightString<char>(text);
    }

private:
    static constexpr int mostFrames = 64;
};

class PosixOS final : public iOS {
public:
    [[nodiscard]] iMemoryService& getMemory() override { return memoryService(); }
    [[nodiscard]] iThreadService& getThreads() override { return threads_; }
    [[nodiscard]] iFileManager& getFileManager() override {
        iFileManager* const installed = installedFileManager.load(std::memory_order_acquire);
        return installed ? *installed : files_;
    }
    [[nodiscard]] iErrorService& getErrors() override { return errors_; }
    [[nodiscard]] iDebugService& getDebug() override { return debug_; }
    [[nodiscard]] unsigned getProcessorCount() override {
        cpu_set_t processors;
        if (sched_getaffinity(0, sizeof(processors), &processors) != 0) {
            return 1;
        }
        return static_cast<unsigned>(CPU_COUNT(&processors));
    }

private:
    PosixThreadService threads_;
    PosixFileManager files_;
    PosixErrors errors_;
    PosixDebug debug_;
};

}  // namespace

iOS& posixOS() noexcept {
    return immortal<PosixOS>();
}

iFileManager* installFileManager(iFileManager* manager) noexcept {
    return installedFileManager.exchange(manager);
}
