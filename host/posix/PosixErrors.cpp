#include "host/posix/PosixErrors.h"

#include <execinfo.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>

namespace {

constinit thread_local int lastSystemError = 0;

constexpr int maxFrames = 64;

struct FreeBlock {
    void operator()(char** block) const { std::free(static_cast<void*>(block)); }
};

}  // namespace

void keepSystemError() noexcept {
    lastSystemError = errno;
}

void keepSystemError(int systemError) noexcept {
    lastSystemError = systemError;
}

OxResult PosixErrorService::getLastError() const {
    return lastSystemError == 0 ? oxFailure : systemErrorBase + static_cast<OxResult>(lastSystemError);
}

LightweightString<wchar_t> PosixErrorService::getLastErrorText() const {
    return lastSystemError == 0 ? LightweightString<wchar_t>()
                                : fromUTF8(systemErrorText(lastSystemError).c_str());
}

LightweightString<char> PosixDebugService::takeStackTrace() const {
    void* frames[maxFrames];
    int const count = backtrace(frames, maxFrames);
    std::unique_ptr<char*, FreeBlock> const texts(backtrace_symbols(frames, count));
    std::string trace;
    for (int index = 0; texts && index < count; ++index) {
        trace.append(texts.get()[index]).push_back('\n');
    }
    return LightweightString<char>(trace);
}

LightweightString<char> systemErrorText(int systemError) {
    return LightweightString<char>(std::system_category().message(systemError));
}
