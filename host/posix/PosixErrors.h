#pragma once

#include "ole/os/Errors.h"

/// Keeps the calling thread's `errno` as the reason for a failure, so that what is called on the way
/// out of the failed operation can't replace it.
void keepSystemError() noexcept;
/// The same with a given number.
void keepSystemError(int systemError) noexcept;

/// The errors that the host's operations have kept.
class PosixErrorService final : public iErrorService {
public:
    /// 0 if nothing has failed on this thread yet.
    [[nodiscard]] OxResult getLastError() const override;
    [[nodiscard]] LightweightString<wchar_t> getLastErrorText() const override;
};

/// Stack traces as the C library tells them.
class PosixDebugService final : public iDebugService {
public:
    [[nodiscard]] LightweightString<char> takeStackTrace() const override;
};

/// The system's text of an error number.
[[nodiscard]] LightweightString<char> systemErrorText(int systemError);
