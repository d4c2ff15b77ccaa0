#include "toolkit/services/Log.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <exception>
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
            open(std::getenv("PLAYFILE_LOG"));
        }
        if (file_) {
            std::fwrite(text.c_str(), 1, text.length(), file_);
            std::fflush(file_);
        }
    }

private:
    void open(char const* path) {
        file_ = path && *path ? std::fopen(path, "ae") : nullptr;
        if (path && *path && !file_) {
            std::fprintf(stderr, "The log can't be written to %s\n", path);
        }
    }

    std::mutex lock_;
    bool isOpened_ = false;
    std::FILE* file_ = nullptr;
};

iLogSink& sink() {
    iLogSink* const installed = installedSink.load(std::memory_order_acquire);
    return installed ? *installed : immortal<HostSink>();
}

/// Formats a line and hands it to `write`. A line that can't be made, for want of memory, is lost: to
/// log is no reason to fail.
template <class Write>
void formatAndWrite(char const* format, va_list arguments, Write const& write) noexcept {
    try {
        write(sink(), formatLogText(format, arguments));
    } catch (std::exception const&) {
        return;
    }
}

}  // namespace

iLogSink* installLogSink(iLogSink* newSink) noexcept {
    return installedSink.exchange(newSink);
}

void LogBoth(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    formatAndWrite(format, arguments, [](iLogSink& inForce, LightweightString<char> const& text) {
        inForce.writeToConsole(text);
        inForce.writeToLog(text);
    });
    va_end(arguments);
}

void LogStringW(LightweightString<wchar_t> const& text) {
    LogBoth("%ls", text.c_str());
}

void Log(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    formatAndWrite(format, arguments,
                   [](iLogSink& inForce, LightweightString<char> const& text) { inForce.writeToLog(text); });
    va_end(arguments);
}

void zorn_printf(char const* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    formatAndWrite(format, arguments, [](iLogSink& inForce, LightweightString<char> const& text) {
        inForce.writeToConsole(text);
    });
    va_end(arguments);
}

void threadExceptionHandler(iThread::Exception const& exception) {
    LogBoth("Exception in thread \"%s\": %s\n", exception.threadName.c_str(), exception.message.c_str());
}
