#include "toolkit/services/ResourceText.h"

#include <array>
#include <cctype>
#include <map>
#include <mutex>
#include <string>

#include "ole/os/Immortal.h"

namespace {

struct CodeText {
    std::uint32_t code;
    char const* text;
};

constexpr std::array<CodeText, 11> codeTexts{{
    {oxFailure, "the operation failed"},
    {oxSuccess, "success"},
    {oxCopyFailed,
     "the file could not be copied: the drive is full or failed; make room or choose another one"},
    {oxInterrupted, "interrupted"},
    {oxNoMorePackets, "no more packets"},
    {oxEndOfData, "end of the data"},
    {oxVideoSamplesNotSupported, "reading sound by video frames isn't supported"},
    {oxFrameNotAvailable, "the frame isn't available"},
    {oxCannotExtract, "the reader can't extract from this file"},
    {oxEmptyExtractSection, "the section to extract is empty"},
    {oxAudioRequestCannotBeServed, "the file can't be opened, or has no such channel or samples"},
}};

constexpr std::array<CodeText, 9> resourceTexts{{
    {ResIds::nothingToDo, "Nothing to do"},
    {ResIds::materialCopyFailed, "Copying failed"},
    {ResIds::tooLittleSpace,
     "Not enough space: $NUM1$ free, $NUM2$ needed; make room or choose another drive"},
    {ResIds::severalClips, "$NUM$ clips"},
    {ResIds::fileCopyFailed,
     "Could not copy to $FILE$: the source can't be read or the file not be made; check both and try again"},
    {ResIds::relocationEnded, "Finished"},
    {ResIds::proxyMarker, "proxy"},
    {ResIds::externalDownload, "Downloading media"},
    {ResIds::localising, "Copying media to the material drives"},
}};

template <std::size_t count>
char const* textOf(std::array<CodeText, count> const& table, std::uint32_t code) {
    for (CodeText const& entry : table) {
        if (entry.code == code) {
            return entry.text;
        }
    }
    return nullptr;
}

/// Those that a program has put in the place of the built-in ones.
struct OwnTexts {
    std::mutex lock;
    std::map<ResId, LightweightString<wchar_t>> texts;
};

OwnTexts& ownTexts() {
    return immortal<OwnTexts>();
}

}  // namespace

LightweightString<char> resourceStr(OxResult code, ResStrFmt format) {
    char const* const known = textOf(codeTexts, code);
    std::string text = known != nullptr ? std::string(known) : "result " + std::to_string(code);
    if (format == resourceSentence) {
        text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
    }
    return LightweightString<char>(text);
}

LightweightString<wchar_t> resourceStrW(OxResult code, ResStrFmt format) {
    return fromUTF8(resourceStr(code, format).c_str());
}

LightweightString<wchar_t> resourceStrW(ResId id) {
    {
        OwnTexts& own = ownTexts();
        std::lock_guard const scope(own.lock);
        auto const found = own.texts.find(id);
        if (found != own.texts.end()) {
            return found->second;
        }
    }
    char const* const known = textOf(resourceTexts, id);
    return fromUTF8((known != nullptr ? std::string(known) : "text " + std::to_string(id)).c_str());
}

LightweightString<wchar_t> paddedResourceStrW(ResId id, char const* before, char const* after, ResStrFmt) {
    return fromUTF8(before) + resourceStrW(id) + fromUTF8(after);
}

void setResourceText(ResId id, LightweightString<wchar_t> const& text) {
    OwnTexts& own = ownTexts();
    std::lock_guard const scope(own.lock);
    if (text.empty()) {
        own.texts.erase(id);
    } else {
        own.texts[id] = text;
    }
}
