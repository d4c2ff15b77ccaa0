#pragma once

#include <cstdint>
#include <exception>
#include <string>

#include "ole/Ox/OxString.h"

/// A result code of the system: 1 is success, everything else says what failed.
using OxResult = std::uint32_t;

/// The result codes that more than one place knows.
enum : OxResult {
    oxFailure = 0,
    oxSuccess = 1,
    oxCopyFailed = 2,
    oxInterrupted = 3,
    oxNoMorePackets = 8,
    oxEndOfData = 11,
    oxVideoSamplesNotSupported = 12,
    oxFrameNotAvailable = 2000,
    oxCannotExtract = 2005,
    oxEmptyExtractSection = 2059,
    oxAudioRequestCannotBeServed = 2061,
};

/// The last error of the operating system on the calling thread.
class iErrorService {
public:
    /// Added to a system error number, so that none of them looks like success.
    static constexpr OxResult systemErrorBase = 10000;

    /// The reason of the last operation of the file manager, a file or the thread service that failed on
    /// this thread, whatever has succeeded since: the system's number plus `systemErrorBase`. 0 if none
    /// has failed yet.
    [[nodiscard]] virtual OxResult getLastError() const = 0;
    /// Its text for people; empty if none has failed yet.
    [[nodiscard]] virtual LightweightString<wchar_t> getLastErrorText() const = 0;

protected:
    ~iErrorService() = default;
};

/// Help in finding faults.
class iDebugService {
public:
    /// The calling thread's stack, a line a frame, as far as the system can tell it.
    [[nodiscard]] virtual LightweightString<char> takeStackTrace() const = 0;

protected:
    ~iDebugService() = default;
};

namespace Ox::Exception {

/// Root of the exceptions that mark misuse.
class Base : public std::exception {
public:
    /// @param typeText  the kind of exception, for the log
    /// @param path      source path of the place that throws
    Base(char const* typeText, char const* message, char const* path, int line,
         LightweightString<char> stackTrace)
        : typeText_(typeText),
          message_(message),
          path_(path),
          line_(line),
          stackTrace_(std::move(stackTrace)) {}

    [[nodiscard]] char const* what() const noexcept override { return message_.c_str(); }
    [[nodiscard]] LightweightString<char> const& typeText() const { return typeText_; }
    [[nodiscard]] LightweightString<char> const& message() const { return message_; }
    [[nodiscard]] LightweightString<char> const& path() const { return path_; }
    [[nodiscard]] int line() const { return line_; }
    [[nodiscard]] LightweightString<char> const& stackTrace() const { return stackTrace_; }

private:
    LightweightString<char> typeText_;
    LightweightString<char> message_;
    LightweightString<char> path_;
    int line_;
    LightweightString<char> stackTrace_;
};

/// Something was called that must not have been called now.
class RuntimeError : public Base {
public:
    RuntimeError(char const* message, char const* path, int line, LightweightString<char> stackTrace)
        : Base("RuntimeError", message, path, line, std::move(stackTrace)) {}
};

}  // namespace Ox::Exception
