#pragma once

#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/OpenType.h"

/// The files whose opening once began and never finished well: it failed, crashed or hung.
///
/// A mark is one boolean preference for each file. It is set before a reader touches the file and goes
/// when the open has succeeded, so it outlives a process that died in between. A mark doesn't keep the
/// file from being opened: whoever asks here decides what to tell the user.
///
/// Threads    Any.
/// Deliberate The open type has no effect: a mark set for video counts for audio too.
class QuarantinedFiles {
public:
    static void add(LightweightString<wchar_t> const& filename, OpenType type);
    static void remove(LightweightString<wchar_t> const& filename, OpenType type);
    [[nodiscard]] static bool contains(LightweightString<wchar_t> const& filename, OpenType type);
    static void remove(Cookie const& cookie, OpenType type);
    [[nodiscard]] static bool contains(Cookie const& cookie, OpenType type);

    /// For video, then for audio.
    static void remove(LightweightString<wchar_t> const& filename);
    [[nodiscard]] static bool contains(LightweightString<wchar_t> const& filename);
    static void remove(Cookie const& cookie);
    [[nodiscard]] static bool contains(Cookie const& cookie);

    /// The preference's key: "Analysing " and the name in UTF-8.
    [[nodiscard]] static LightweightString<char> getAnalysisPrefKey(
        LightweightString<wchar_t> const& filename, OpenType type);
};
