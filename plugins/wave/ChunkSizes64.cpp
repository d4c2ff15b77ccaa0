#include "plugins/wave/ChunkSizes64.h"

#include <algorithm>

namespace playfile_wave {
namespace {

// The chunk: lengths of the file and of its data, number of samples, number of entries, entries.
constexpr std::size_t dataLengthOffset = 8;
constexpr std::size_t entryCountOffset = 24;
constexpr std::size_t entriesOffset = 28;
constexpr std::size_t entryBytes = 12;

}  // namespace

ChunkSizes64::ChunkSizes64(Bytes chunk) {
    if (chunk.size() >= dataLengthOffset + sizeof(std::uint64_t)) {
        formLength_ = numberAt<std::uint64_t>(chunk, 0);
        entries_.push_back({codeOf("data"), numberAt<std::uint64_t>(chunk, dataLengthOffset)});
    }
    if (chunk.size() < entriesOffset) {
        return;
    }
    std::size_t const count = std::min<std::size_t>(numberAt<std::uint32_t>(chunk, entryCountOffset),
                                                    (chunk.size() - entriesOffset) / entryBytes);
    for (std::size_t i = 0; i < count; ++i) {
        std::size_t const at = entriesOffset + i * entryBytes;
        entries_.push_back({numberAt<std::uint32_t>(chunk, at), numberAt<std::uint64_t>(chunk, at + 4)});
    }
}

std::uint64_t ChunkSizes64::takeLength(std::uint32_t code) {
    auto const found = std::ranges::find(entries_, code, &Entry::code);
    if (found == entries_.end()) {
        return unknown;
    }
    std::uint64_t const length = found->length;
    entries_.erase(found);
    return length;
}

}  // namespace playfile_wave
