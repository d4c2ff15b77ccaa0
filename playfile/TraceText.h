#pragma once

#include <string>

#include "playfile/Trace.h"

/// The JSON text of events, as Chrome's trace viewer takes it: ASCII alone, one event a line.
namespace traceText {

/// Appends a JSON string. Characters that are none, and halves of surrogate pairs, become U+FFFD.
void appendString(std::string& out, LightweightString<wchar_t> const& text);
/// The same of UTF-8.
void appendString(std::string& out, char const* text);

/// Appends an event.
void appendEvent(std::string& out, TraceEvent const& event, int process, int thread);

/// Appends the name of a thread, or of the process.
///
/// @param what  "thread_name" or "process_name"
void appendName(std::string& out, char const* what, char const* name, int process, int thread);

}  // namespace traceText
