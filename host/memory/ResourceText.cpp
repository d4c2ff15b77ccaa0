#include "toolkit/services/ResourceText.h"

#include <array>
#include <string>

namespace {

struct CodeText {
    OxResult code;
    char const* text;
};

constexpr std::array<CodeText, 10> codeTexts{{
    {oxFailure, "the operation failed"},
    {oxSuccess, "success"},
    {oxInterrupted, "interrupted"},
    {oxNoMorePackets, "no more packets"},
    {oxEndOfData, "end of the data"},
    {oxVideoSamplesNotSupported, "reading sound by video frames isn't supported"},
    {oxFrameNotAvailable, "the frame isn't available"},
    {oxCannotExtract, "the reader can't extract from this file"},
    {oxEmptyExtractSection, "the section to extract is empty"},
    {oxAudioRequestCannotBeServed, "the file can't be opened, or has no such channel or samples"},
}};

}  // namespace

LightweightString<char> resourceStr(OxResult code, ResStrFmt) {
    for (CodeText const& entry : codeTexts) {
        if (entry.code == code) {
            return entry.text;
        }
    }
    return LightweightString<char>("result " + std::to_string(code));
}
