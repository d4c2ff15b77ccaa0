#include "tools/playfile/ReaderChoice.h"

#include <string_view>

#include "toolkit/plugins/FileReaderInfo.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

constexpr std::string_view openedPrefix = "Open   \"";
constexpr std::string_view beforeReader = "\" with ";
constexpr std::string_view behindReader = " for ";

/// The reader that a message of a good opening names; empty for any other message. The file's name may
/// hold anything, so both marks are sought from the end.
std::string readerIn(std::string_view message) {
    std::size_t const end = message.rfind(behindReader);
    std::size_t const before = message.rfind(beforeReader, end);
    if (!message.starts_with(openedPrefix) || end == std::string_view::npos ||
        before == std::string_view::npos) {
        return {};
    }
    std::size_t const begin = before + beforeReader.size();
    return std::string(message.substr(begin, end - begin));
}

ReaderChoice::Opinion ask(Ox::FileReaderInfo& reader, FileReadInstance const& file) {
    ReaderChoice::Opinion opinion;
    opinion.name = reader.readerName.str();
    opinion.wouldTry = reader.canOpen(file.filename, file.openType);
    if (opinion.wouldTry) {
        opinion.serves = mediaNames(
            reader.getReadableTypes(file.filename, file.openType, file.metadata.get(), Aud::Metadata()));
    }
    return opinion;
}

}  // namespace

ReaderChoice explainChoice(LogCapture const& log, FileReadInstance const& file) {
    ReaderChoice choice;
    choice.messages = log.lines();
    for (std::string const& message : choice.messages) {
        if (std::string const reader = readerIn(message); !reader.empty()) {
            choice.reader = reader;
        }
    }
    for (std::uint8_t index = 0; index < Ox::FileReaderInfo::getNumFileReaders(); ++index) {
        if (Ox::Ptr<Ox::FileReaderInfo> const reader = Ox::FileReaderInfo::getFileReaders(index)) {
            choice.opinions.push_back(ask(*reader, file));
        }
    }
    return choice;
}

std::string mediaNames(std::uint32_t mask) {
    OpenType const both(static_cast<std::int32_t>(mask & OpenType(OpenType::both).mask()));
    return both == OpenType::unknown ? "nothing" : both.asString();
}

}  // namespace cli
