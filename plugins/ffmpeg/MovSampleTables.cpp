#include "plugins/ffmpeg/MovSampleTables.h"

#include <algorithm>
#include <limits>
#include <span>

namespace playfile_ffmpeg {
namespace {

using Bytes = std::span<uint8_t const>;

constexpr size_t largestMovieBox = size_t{256} << 20;
constexpr uint32_t mostSamples = uint32_t{1} << 24;
constexpr uint64_t largestPosition = std::numeric_limits<int64_t>::max();
constexpr size_t fullBoxHeader = 4;      // version and flags
constexpr size_t tableHeader = 8;        // and a number of rows
constexpr size_t descriptionHeader = 6;  // of zeroes, before the number of a reference

constexpr uint32_t fourcc(char const (&name)[5]) {
    return static_cast<uint32_t>(name[0]) << 24 | static_cast<uint32_t>(name[1]) << 16 |
           static_cast<uint32_t>(name[2]) << 8 | static_cast<uint32_t>(name[3]);
}

/// 0 where the bytes end before.
uint32_t be32(Bytes bytes, size_t at) {
    if (at + 4 > bytes.size()) {
        return 0;
    }
    return static_cast<uint32_t>(bytes[at]) << 24 | static_cast<uint32_t>(bytes[at + 1]) << 16 |
           static_cast<uint32_t>(bytes[at + 2]) << 8 | static_cast<uint32_t>(bytes[at + 3]);
}

uint64_t be64(Bytes bytes, size_t at) {
    return static_cast<uint64_t>(be32(bytes, at)) << 32 | be32(bytes, at + 4);
}

struct Box {
    uint32_t type = 0;
    uint64_t headerByteCount = 0;
    uint64_t byteCount = 0;  ///< Header included; 0: up to the end.
};

Box boxAt(Bytes header) {
    Box box{be32(header, 4), 8, be32(header, 0)};
    if (box.byteCount == 1) {
        box.headerByteCount = 16;
        box.byteCount = be64(header, 8);
    }
    return box;
}

/// Calls `take` with type and content of each box inside.
template <typename Take>
void forEachBox(Bytes content, Take take) {
    while (content.size() >= 8) {
        Box const box = boxAt(content);
        uint64_t const whole = box.byteCount == 0 ? content.size() : box.byteCount;
        if (whole < box.headerByteCount || whole > content.size()) {
            return;
        }
        take(box.type, content.subspan(box.headerByteCount, whole - box.headerByteCount));
        content = content.subspan(whole);
    }
}

Bytes childBox(Bytes content, uint32_t wanted) {
    Bytes found;
    forEachBox(content, [&](uint32_t type, Bytes inside) {
        if (type == wanted && found.empty()) {
            found = inside;
        }
    });
    return found;
}

std::vector<uint8_t> readMovieBox(ByteFile const& file) {
    int64_t at = 0;
    while (at + 8 <= file.byteCount()) {
        uint8_t header[16] = {};
        size_t const got = file.readAt(at, header, sizeof header);
        Box const box = boxAt(Bytes(header, got));
        uint64_t const rest = static_cast<uint64_t>(file.byteCount() - at);
        uint64_t const whole = box.byteCount == 0 ? rest : box.byteCount;
        if (whole < box.headerByteCount || whole > rest) {
            return {};
        }
        if (box.type == fourcc("moov")) {
            if (whole > largestMovieBox) {
                return {};
            }
            std::vector<uint8_t> content(whole - box.headerByteCount);
            int64_t const contentAt = at + static_cast<int64_t>(box.headerByteCount);
            content.resize(file.readAt(contentAt, content.data(), content.size()));
            return content;
        }
        at += static_cast<int64_t>(whole);
    }
    return {};
}

uint32_t trackIdOf(Bytes track) {
    Bytes const header = childBox(track, fourcc("tkhd"));
    bool const hasLongTimes = !header.empty() && header[0] == 1;
    return be32(header, fullBoxHeader + (hasLongTimes ? 16 : 8));
}

/// Calls `take` with the media information of the track.
template <typename Take>
void withTrack(Bytes movie, uint32_t trackId, Take take) {
    bool isFound = false;
    forEachBox(movie, [&](uint32_t type, Bytes track) {
        if (type != fourcc("trak") || isFound || trackIdOf(track) != trackId) {
            return;
        }
        isFound = true;
        take(childBox(childBox(track, fourcc("mdia")), fourcc("minf")));
    });
}

/// References to data in the order of their numbers, which begin at 1: true for one that names another file.
/// One that names nothing can only mean its own.
std::vector<bool> referencesOf(Bytes media) {
    constexpr uint32_t isOwnFile = 1;
    std::vector<bool> leadElsewhere{false};
    Bytes const box = childBox(childBox(media, fourcc("dinf")), fourcc("dref"));
    if (box.size() > tableHeader) {
        forEachBox(box.subspan(tableHeader), [&](uint32_t, Bytes reference) {
            bool const isOwn = (be32(reference, 0) & isOwnFile) != 0 || reference.size() <= fullBoxHeader;
            leadElsewhere.push_back(!isOwn);
        });
    }
    return leadElsewhere;
}

}  // namespace

/// Reads the tables of one track into a MovSampleTables.
class MovTrackParser {
public:
    MovTrackParser(Bytes tables, bool isFragmented) : tables_(tables) {
        result_.isFragmented_ = isFragmented;
    }

    std::optional<MovSampleTables> parse() {
        result_.descriptionCount_ = be32(childBox(tables_, fourcc("stsd")), fullBoxHeader);
        if (!parseSizes() || !parsePositions() || !parseOffsets()) {
            return std::nullopt;
        }
        return std::move(result_);
    }

private:
    /// True if a table after `headerByteCount` bytes holds `count` rows.
    static bool holdsRows(Bytes box, size_t headerByteCount, uint32_t count, size_t rowByteCount) {
        return box.size() >= headerByteCount && (box.size() - headerByteCount) / rowByteCount >= count;
    }

    bool parseSizes() {
        Bytes const box = childBox(tables_, fourcc("stsz"));
        uint32_t const same = be32(box, 4);
        uint32_t const count = be32(box, 8);
        if (count == 0 || count > mostSamples || (same == 0 && !holdsRows(box, 12, count, 4))) {
            return false;
        }
        if (same != 0) {
            result_.sizes_.assign(count, same);
            return true;
        }
        result_.sizes_.resize(count);
        for (uint32_t sample = 0; sample < count; ++sample) {
            result_.sizes_[sample] = be32(box, 12 + size_t{sample} * 4);
        }
        return true;
    }

    bool parsePositions() {
        Bytes const chunks32 = childBox(tables_, fourcc("stco"));
        Bytes const chunks = chunks32.empty() ? childBox(tables_, fourcc("co64")) : chunks32;
        size_t const width = chunks32.empty() ? 8 : 4;
        Bytes const runs = childBox(tables_, fourcc("stsc"));
        uint32_t const chunkCount = be32(chunks, 4);
        uint32_t const runCount = be32(runs, 4);
        if (!holdsRows(chunks, 8, chunkCount, width) || !holdsRows(runs, 8, runCount, 12)) {
            return false;
        }
        result_.positions_.reserve(result_.sizes_.size());
        uint32_t run = 0;
        for (uint32_t chunk = 0; chunk < chunkCount; ++chunk) {
            while (run + 1 < runCount && be32(runs, 8 + (size_t{run} + 1) * 12) <= chunk + 1) {
                ++run;
            }
            size_t const at = 8 + size_t{chunk} * width;
            if (!placeChunk(width == 8 ? be64(chunks, at) : be32(chunks, at),
                            be32(runs, 8 + size_t{run} * 12 + 4))) {
                return false;
            }
        }
        return result_.positions_.size() == result_.sizes_.size();
    }

    /// False if a sample would lie beyond what a file can be.
    bool placeChunk(uint64_t position, uint32_t sampleCount) {
        for (uint32_t left = sampleCount; left > 0 && result_.positions_.size() < result_.sizes_.size();
             --left) {
            uint32_t const size = result_.sizes_[result_.positions_.size()];
            if (position > largestPosition - size) {
                return false;
            }
            result_.positions_.push_back(static_cast<int64_t>(position));
            position += size;
        }
        return true;
    }

    bool parseOffsets() {
        Bytes const box = childBox(tables_, fourcc("ctts"));
        uint32_t const runCount = be32(box, 4);
        if (runCount == 0) {
            return true;
        }
        if (!holdsRows(box, 8, runCount, 8)) {
            return false;
        }
        size_t const sampleCount = result_.sizes_.size();
        int64_t lowest = 0;
        for (uint32_t run = 0; run < runCount && result_.offsets_.size() < sampleCount; ++run) {
            uint32_t const count = be32(box, 8 + size_t{run} * 8);
            int32_t const offset = static_cast<int32_t>(be32(box, 8 + size_t{run} * 8 + 4));
            lowest = std::min<int64_t>(lowest, offset);
            size_t const room = sampleCount - result_.offsets_.size();
            result_.offsets_.insert(result_.offsets_.end(), std::min<size_t>(count, room), offset);
        }
        result_.offsets_.resize(sampleCount);
        result_.decodeShift_ = -lowest;
        return true;
    }

    Bytes tables_;
    MovSampleTables result_;
};

std::optional<MovSampleTables> MovSampleTables::read(ByteFile const& file, uint32_t trackId) {
    std::vector<uint8_t> const movie = readMovieBox(file);
    bool const isFragmented = !childBox(movie, fourcc("mvex")).empty();
    std::optional<MovSampleTables> found;
    withTrack(movie, trackId, [&](Bytes media) {
        found = MovTrackParser(childBox(media, fourcc("stbl")), isFragmented).parse();
    });
    return found;
}

bool MovSampleTables::lieElsewhere(ByteFile const& file, uint32_t trackId) {
    std::vector<uint8_t> const movie = readMovieBox(file);
    bool isElsewhere = false;
    withTrack(movie, trackId, [&](Bytes media) {
        std::vector<bool> const leadElsewhere = referencesOf(media);
        Bytes const descriptions = childBox(childBox(media, fourcc("stbl")), fourcc("stsd"));
        if (descriptions.size() <= tableHeader) {
            return;
        }
        forEachBox(descriptions.subspan(tableHeader), [&](uint32_t, Bytes description) {
            uint32_t const number = be32(description, descriptionHeader) >> 16;
            isElsewhere = isElsewhere || (number < leadElsewhere.size() && leadElsewhere[number]);
        });
    });
    return isElsewhere;
}

}  // namespace playfile_ffmpeg
