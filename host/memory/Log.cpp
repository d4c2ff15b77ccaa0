#include "toolkit/services/Log.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "ole/os/Immortal.h"
#include "ole/os/Threads.h"
#include "toolkit/services/LogFormat.h"

namespace {

constinit std::atomic<iLogSink*> installedSink{nullptr};

/// Writes to standard error, and to the file that the environment's `PLAYFILE_LOG` names.
class HostSink final : public iLogSink {
public:
    void writeToConsole(LightweightString<char> const& text) override {
        std::fwrite(text.c_str(), 1, text.length(), stderr);
    }
    void writeToLog(LightweightString<char> const& text) override {
        std::lock_guard const scope(lock_);
        if (!isOpened_) {
            isOpened_ = true;
            char const* const path = std::getenv("PLAYFILE_LOG");
            file_ = path ? std::fopen(path, "ae") : nullptr;
        }
        if (file_) {
            std::fwrite(text.c_str(), 1, text.length(), file_);
            std::fflush(file_);
        }
    }

private:
    std::mutex lock_;
    bool isOpened_ = false;
    std::FILE* file_ = nullptr;
};

iLogSink& sink() {
    iLogSink* const installed = installedSink.load(std::memory_order_acquire);
    return installed ? *installed : immortal<HostSink>();
}

}  // namespace

iLogSink* installLogSink(iLogSink* newSink) noexcept {
    return installedSink.exchange(newSink);
}

void LogBoth(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    LightweightString<char> const text = formatLogText(format, arguments);
    va_end(arguments);
    sink().writeToConsole(text);
    sink().writeToLog(text);
}

void Log(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    sink().writeToLog(formatLogText(format, arguments));
    va_end(arguments);
}

void zorn_printf(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    sink().writeToConsole(formatLogText(format, arguments));
    va_end(arguments);
}

void threadExceptionHandler(iThread::Exception const& exception) {
    LogBoth("Exception in thread \"%s\": %s\n", exception.threadName.c_str(), exception.message.c_str());
}
