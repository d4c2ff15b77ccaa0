#pragma once

#include <map>
#include <mutex>

#include "header/SavHeader.h"
#include "toolkit/catalogue/MaterialInfo.h"

/// Keeps the header of a piece of material in a file beside it: the material's name, with the extension "sav"
/// in place of its own.
///
/// A header is written whole under another name and then gets its own: a process that dies at any instant
/// leaves the one before or the new one. Where the material lies is asked of the catalogue in force.
///
/// Threads    Any.
/// Errors     What can't be written is logged with the file's name and what helps.
/// Deliberate All channels that one file holds share its header; one of the other medium isn't theirs.
///            A file of that name that holds something else is neither read nor replaced.
///            A start offset is read once in a process, and again when the header is written here.
class HeaderFiles final : public MaterialInfo::iStore {
public:
    /// The header's `start_offset`; 0 without a header.
    [[nodiscard]] std::int32_t getStartOffset(Cookie const& cookie) override;
    bool writeHeader(Cookie const& cookie, SAV_HEADER const& header) override;
    [[nodiscard]] bool canWriteHeader(LightweightString<wchar_t> const& material) override;
    [[nodiscard]] bool readHeader(Cookie const& cookie, SAV_HEADER& header) override;

    /// Where the header of a material file lies.
    [[nodiscard]] static LightweightString<wchar_t> nameFor(LightweightString<wchar_t> const& material);
    /// Reads the header in a file of that name; false, and the header untouched, if it holds none.
    [[nodiscard]] static bool readFile(LightweightString<wchar_t> const& name, SAV_HEADER& header);
    /// Reads a text of any version. The name of the original file ends with its line.
    [[nodiscard]] static SAV_HEADER parse(LightweightString<char> const& text);

private:
    std::mutex lock_;
    /// Under the lock.
    std::map<Cookie, std::int32_t> startOffsets_;
};
