/// The chunks of a WAVE file, one after the other from the twelfth byte on.
///
/// The loop goes on while there is what looks like a chunk: a code of printable characters and a length.
/// Each round moves on by a header at least, and there is a limit to the rounds, so that no file keeps it
/// busy for long. A chunk whose length isn't known reaches to the end of the file, so it is the last.
#include "plugins/wave/WaveHeaders.h"

#include <algorithm>
#include <array>

#include "ole/os/OS.h"
#include "plugins/wave/WaveTexts.h"

namespace playfile_wave {
namespace {

constexpr std::uint32_t mostChunks = 10000;
constexpr std::uint32_t mostFormatBytes = 64;
constexpr std::uint32_t mostSizeBytes = 64 * 1024;

constexpr std::uint32_t codeFormat = codeOf("fmt ");
constexpr std::uint32_t codeData = codeOf("data");
constexpr std::uint32_t codeSizes = codeOf("ds64");
constexpr std::uint32_t codeBroadcast = codeOf("bext");
constexpr std::uint32_t codeXml = codeOf("iXML");
constexpr std::uint32_t codeList = codeOf("LIST");

bool isPrintable(std::uint32_t code) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        std::uint32_t const character = code >> shift & 0xFF;
        if (character < 0x20 || character > 0x7E) {
            return false;
        }
    }
    return true;
}

std::string nameOf(std::uint32_t code) {
    std::string name = "\"....\"";
    for (unsigned i = 0; i < 4; ++i) {
        name[1 + i] = static_cast<char>(code >> (8 * i) & 0xFF);
    }
    return name;
}

std::string place(std::uint32_t code, std::uint64_t offset) {
    return nameOf(code) + " chunk at offset " + std::to_string(offset) + ": ";
}

}  // namespace

bool WaveHeaders::isWave(Bytes start) {
    if (start.size() < formBytes || numberAt<std::uint32_t>(start, 8) != codeOf("WAVE")) {
        return false;
    }
    auto const form = numberAt<std::uint32_t>(start, 0);
    return form == codeOf("RIFF") || form == codeOf("RF64") || form == codeOf("BW64");
}

bool WaveHeaders::open(LightweightString<wchar_t> const& name) {
    if (openFile(name, iFile::readAccess, iFile::existingOnly, iFile::shared) != oxSuccess) {
        return fail("can't be opened: " + toUTF8(OS()->getErrors().getLastErrorText()).str());
    }
    fileSize_ = OS()->getFileManager().getFileSize(name);
    return readHeaders();
}

bool WaveHeaders::readHeaders() {
    return readForm() && readChunks();
}

std::uint32_t WaveHeaders::readAt(std::uint64_t offset, void* to, std::uint32_t byteCount) {
    return positionAt(offset) ? read(to, byteCount) : 0;
}

bool WaveHeaders::readForm() {
    std::array<std::uint8_t, formBytes> start{};
    if (readAt(0, start.data(), formBytes) != formBytes || !isWave(start)) {
        return fail("doesn't begin as a WAVE file does");
    }
    facts_.form = charactersOf(Bytes(start).first(4));
    formLength_ = numberAt<std::uint32_t>(start, 4);
    is64_ = facts_.form != "RIFF";
    return true;
}

bool WaveHeaders::readChunks() {
    std::uint64_t offset = formBytes;
    Chunk chunk;
    for (std::uint32_t count = 0; count < mostChunks && readChunkHeader(offset, chunk); ++count) {
        if (!take(chunk)) {
            return false;
        }
        offset = nextAfter(chunk);
    }
    return isComplete(offset);
}

/// False where there is no further chunk. A header whose length is the mark of a broken recorder is read
/// in full all the same, although the answer is false.
bool WaveHeaders::readChunkHeader(std::uint64_t offset, Chunk& chunk) {
    if (offset + headerBytes > fileSize_ || !positionAt(offset)) {
        return false;
    }
    unsigned int code = 0;
    unsigned int length = 0;
    bool const isGood = readRIFFChunkHeader(code, length);
    if (!isPrintable(code)) {
        return false;
    }
    std::uint64_t const room = fileSize_ - offset - headerBytes;
    std::uint64_t const stated = isGood ? statedLength(code, length, offset) : ChunkSizes64::unknown;
    if (code == codeData && !hasData_ && stated != ChunkSizes64::unknown && stated > room) {
        remark_ = place(code, offset) + std::to_string(stated) + " bytes are stated, " +
                  std::to_string(room) + " are there";
    }
    chunk = {code, offset, std::min(stated, room)};
    return true;
}

/// The length of a chunk, from its own header or from the table of long ones.
///
/// Data of no length that end a file which says that it has no more, or says nothing of itself, are those of
/// a header that was written first and never completed.
std::uint64_t WaveHeaders::statedLength(std::uint32_t code, std::uint32_t length, std::uint64_t offset) {
    std::uint64_t stated = length;
    if (length == ChunkSizes64::elsewhere || (is64_ && code == codeData && length == 0)) {
        stated = is64_ ? sizes_.takeLength(code) : ChunkSizes64::unknown;
    }
    bool const isNeverWritten = code == codeData && stated == 0 && endsBefore(offset + headerBytes);
    return isNeverWritten ? ChunkSizes64::unknown : stated;
}

/// True if the file, as it states its own length, has nothing from `offset` on, or states none.
bool WaveHeaders::endsBefore(std::uint64_t offset) const {
    bool const isStated =
        formLength_ != 0 && formLength_ != ChunkSizes64::elsewhere && formLength_ != ChunkSizes64::unknown;
    return !isStated || formLength_ <= offset - headerBytes;
}

/// Behind a chunk of odd length comes a byte of 0, which some leave out: then a header is there at once.
std::uint64_t WaveHeaders::nextAfter(Chunk const& chunk) {
    std::uint64_t const end = chunk.end();
    return chunk.length % 2 == 0 || isHeaderAt(end) ? end : end + 1;
}

bool WaveHeaders::isHeaderAt(std::uint64_t offset) {
    std::array<std::uint8_t, headerBytes> header{};
    if (offset + headerBytes > fileSize_ || readAt(offset, header.data(), headerBytes) != headerBytes) {
        return false;
    }
    auto const length = numberAt<std::uint32_t>(header, 4);
    return isPrintable(numberAt<std::uint32_t>(header, 0)) &&
           (length == ChunkSizes64::elsewhere || length <= fileSize_ - offset - headerBytes);
}

bool WaveHeaders::take(Chunk const& chunk) {
    if (chunk.code == codeFormat) {
        return hasFormat_ || takeFormat(chunk);
    }
    if (chunk.code == codeData) {
        takeData(chunk);
    } else if (chunk.code == codeSizes && is64_) {
        takeSizes(chunk);
    } else {
        takeTexts(chunk);
    }
    return true;
}

bool WaveHeaders::takeFormat(Chunk const& chunk) {
    std::string why;
    eFormatResult const result = parseFormat(contentsOf(chunk, mostFormatBytes), facts_.format, why);
    hasFormat_ = result == eFormatResult::isRead;
    isForeign_ = result == eFormatResult::isForeign;
    return hasFormat_ || fail(place(chunk.code, chunk.offset) + why);
}

void WaveHeaders::takeData(Chunk const& chunk) {
    if (!hasData_) {
        hasData_ = true;
        facts_.dataOffset = chunk.contentsAt();
        facts_.dataLength = chunk.length;
    }
}

void WaveHeaders::takeSizes(Chunk const& chunk) {
    sizes_ = ChunkSizes64(contentsOf(chunk, mostSizeBytes));
    if (formLength_ == ChunkSizes64::elsewhere) {
        formLength_ = sizes_.formLength();
    }
}

void WaveHeaders::takeTexts(Chunk const& chunk) {
    if (chunk.code == codeBroadcast) {
        takeBroadcast(textsOf(chunk), facts_.tags);
    } else if (chunk.code == codeList) {
        takeInfo(textsOf(chunk), facts_.tags);
    } else if (chunk.code == codeXml) {
        setText(facts_.tags, "iXML", textOf(textsOf(chunk)));
    }
}

/// What is kept of all texts together is bounded, so that no file makes its opening long.
std::vector<std::uint8_t> WaveHeaders::textsOf(Chunk const& chunk) {
    std::vector<std::uint8_t> texts = contentsOf(chunk, textRoom_);
    textRoom_ -= static_cast<std::uint32_t>(texts.size());
    return texts;
}

/// The length is the file's own, not what it states, and is bounded besides.
std::vector<std::uint8_t> WaveHeaders::contentsOf(Chunk const& chunk, std::uint32_t most) {
    std::vector<std::uint8_t> contents(std::min<std::uint64_t>(chunk.length, most));
    auto const wanted = static_cast<std::uint32_t>(contents.size());
    contents.resize(readAt(chunk.contentsAt(), contents.data(), wanted));
    return contents;
}

/// @param end  where the chunks have ended
bool WaveHeaders::isComplete(std::uint64_t end) {
    if (!hasFormat_ || !hasData_) {
        return fail("no " + nameOf(hasFormat_ ? codeData : codeFormat) + " chunk before offset " +
                    std::to_string(std::min(end, fileSize_)) + ", where the chunks end");
    }
    return true;
}

bool WaveHeaders::fail(std::string const& what) {
    fault_ = what;
    return false;
}

}  // namespace playfile_wave
