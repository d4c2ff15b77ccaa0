#pragma once

#include <string>
#include <vector>

#include "header/MaterialFile.h"
#include "plugins/wave/ChunkSizes64.h"
#include "plugins/wave/WaveFormat.h"
#include "toolkit/services/ConfigB.h"

namespace playfile_wave {

/// What the headers of a file say.
///
/// Units  Bytes.
struct WaveFacts {
    /// "RIFF", "RF64" or "BW64".
    std::string form;
    WaveFormat format;
    std::uint64_t dataOffset = 0;
    /// What is really there of the samples.
    std::uint64_t dataLength = 0;
    /// Texts by their keys.
    configb tags;

    [[nodiscard]] std::uint64_t sampleCount() const { return dataLength / format.blockAlign; }
};

/// An open file of the WAVE family, and the parser of its chunks.
///
/// Every number of the file is taken for a claim: no chunk reaches beyond the end of the file, whatever it
/// says, and only contents of bounded length are kept. A length that isn't stated anywhere reaches to the
/// end of the file, as recorders leave it that write into a pipe or die. The chunks may come in any order,
/// and with a byte behind a chunk of odd length or without; of several formats or data the first count.
///
/// Threads  One at a time.
/// Errors   `open` says in words what is wrong, and at which chunk and offset.
class WaveHeaders : public MaterialFile {
public:
    /// True if these first bytes of a file are those of the family; needs `formBytes` of them.
    [[nodiscard]] static bool isWave(Bytes start);
    static constexpr std::uint32_t formBytes = 12;

    /// Opens a file and reads its headers.
    [[nodiscard]] bool open(LightweightString<wchar_t> const& name);
    /// Reads the headers of the file that is open.
    [[nodiscard]] bool readHeaders() override;

    [[nodiscard]] WaveFacts const& facts() const { return facts_; }
    /// What was wrong.
    [[nodiscard]] std::string const& fault() const { return fault_; }
    /// True if nothing is wrong with the file but that others must read it.
    [[nodiscard]] bool isForeign() const { return isForeign_; }
    /// What is odd about a file that was opened all the same; empty if nothing is.
    [[nodiscard]] std::string const& remark() const { return remark_; }

    /// Reads from an offset on. @return the bytes read, fewer at the end of the file and after an error
    std::uint32_t readAt(std::uint64_t offset, void* to, std::uint32_t byteCount);

private:
    /// A chunk of the file.
    struct Chunk {
        std::uint32_t code = 0;
        /// Of its header.
        std::uint64_t offset = 0;
        /// Of its contents, held to the file.
        std::uint64_t length = 0;

        [[nodiscard]] std::uint64_t contentsAt() const { return offset + headerBytes; }
        [[nodiscard]] std::uint64_t end() const { return contentsAt() + length; }
    };
    static constexpr std::uint32_t headerBytes = 8;
    static constexpr std::uint32_t mostTextBytes = 4 * 1024 * 1024;

    [[nodiscard]] bool readForm();
    [[nodiscard]] bool readChunks();
    [[nodiscard]] bool readChunkHeader(std::uint64_t offset, Chunk& chunk);
    [[nodiscard]] std::uint64_t statedLength(std::uint32_t code, std::uint32_t length, std::uint64_t offset);
    [[nodiscard]] bool endsBefore(std::uint64_t offset) const;
    [[nodiscard]] std::uint64_t nextAfter(Chunk const& chunk);
    [[nodiscard]] bool isHeaderAt(std::uint64_t offset);
    [[nodiscard]] bool take(Chunk const& chunk);
    [[nodiscard]] bool takeFormat(Chunk const& chunk);
    void takeData(Chunk const& chunk);
    void takeSizes(Chunk const& chunk);
    void takeTexts(Chunk const& chunk);
    [[nodiscard]] std::vector<std::uint8_t> textsOf(Chunk const& chunk);
    [[nodiscard]] std::vector<std::uint8_t> contentsOf(Chunk const& chunk, std::uint32_t most);
    [[nodiscard]] bool isComplete(std::uint64_t end);
    [[nodiscard]] bool fail(std::string const& what);

    std::uint64_t fileSize_ = 0;
    /// As the file states it: what follows its first 8 bytes.
    std::uint64_t formLength_ = 0;
    /// Bytes of texts that may still be kept.
    std::uint32_t textRoom_ = mostTextBytes;
    ChunkSizes64 sizes_;
    bool is64_ = false;
    bool hasFormat_ = false;
    bool hasData_ = false;
    bool isForeign_ = false;
    WaveFacts facts_;
    std::string fault_;
    std::string remark_;
};

}  // namespace playfile_wave
