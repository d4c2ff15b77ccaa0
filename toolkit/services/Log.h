#pragma once

#include "ole/Ox/OxString.h"

/// Where finished log lines go.
///
/// Threads  Any; called without a lock of the log. A line may hold several line feeds or none.
class iLogSink {
public:
    virtual ~iLogSink() = default;
    /// @param text  UTF-8
    virtual void writeToConsole(LightweightString<char> const& text) = 0;
    virtual void writeToLog(LightweightString<char> const& text) = 0;
};

/// Puts `sink` in force, null for the host's own (standard error, and the file that the environment's
/// `PLAYFILE_LOG` names), and gives back the one before, null for the host's own. Not owned.
iLogSink* installLogSink(iLogSink* sink) noexcept;

/// Formats like printf and writes to console and log. `%ls` is written as UTF-8 in any locale. A line
/// that can't be made for want of memory is lost: nothing is thrown.
void LogBoth(char const* format, ...) __attribute__((format(printf, 1, 2)));
/// Writes a text as it stands to console and log.
void LogStringW(LightweightString<wchar_t> const& text);
/// As `LogBoth`, to the log alone.
void Log(char const* format, ...) __attribute__((format(printf, 1, 2)));
/// As `LogBoth`, to the console alone.
void zorn_printf(char const* format, ...) __attribute__((format(printf, 1, 2)));
