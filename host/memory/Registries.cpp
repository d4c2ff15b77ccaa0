/// The registries of readers, decoders and keepers of decoders.
#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <vector>

#include "ole/os/Events.h"
#include "ole/os/Immortal.h"
#include "toolkit/plugins/DecoderInfo.h"
#include "toolkit/plugins/FileReaderInfo.h"

namespace {

struct Readers {
    struct Entry {
        Ox::Ptr<Ox::FileReaderInfo> reader;
        int priority;
    };
    std::shared_mutex lock;
    std::vector<Entry> entries;
};

struct Keepers {
    std::mutex lock;
    std::vector<Ox::Ptr<CodecPool::iKeeper>> list;
};

/// "Decompresses" frames that come with their pixels: waits until they are there.
class RawDecoder : public iVideoDecoder {
public:
    [[nodiscard]] bool canDecode(VideoDecompressionInfo const& info) const override {
        return info.codec == VideoDecompressionInfo::rawPixels;
    }
    int decompress(Ox::Ptr<FrameBufferRep>& buffer) override {
        if (!buffer || !allHavePixels(*buffer)) {
            return 0;
        }
        buffer->setDecompressComplete(FrameBufferRep::done);
        return 1;
    }

private:
    /// Waits for every frame, so that none is written any more when it answers.
    static bool allHavePixels(FrameBufferRep const& buffer) {
        bool areValid = true;
        Ox::Image::Surface surface;
        for (std::uint16_t i = 0; buffer.getSurface(i, surface); ++i) {
            static_cast<void>(surface.wait(iThreadEvent::noTimeLimit));
            areValid = areValid && surface.valid();
        }
        return areValid;
    }
};

struct Decoders {
    std::mutex lock;
    std::vector<Ox::Ptr<iVideoDecoder>> list{Ox::makePtr<RawDecoder>()};
};

}  // namespace

namespace Ox {

std::uint8_t FileReaderInfo::getNumFileReaders() {
    auto& readers = immortal<Readers>();
    std::shared_lock const scope(readers.lock);
    return static_cast<std::uint8_t>(readers.entries.size());
}

Ptr<FileReaderInfo> FileReaderInfo::getFileReaders(unsigned char index) {
    auto& readers = immortal<Readers>();
    std::shared_lock const scope(readers.lock);
    return index < readers.entries.size() ? readers.entries[index].reader : Ptr<FileReaderInfo>();
}

bool FileReaderInfo::add(Ptr<FileReaderInfo> const& reader, int priority) {
    auto& readers = immortal<Readers>();
    std::lock_guard const scope(readers.lock);
    auto& entries = readers.entries;
    bool const isKnown = std::any_of(entries.begin(), entries.end(),
                                     [&](Readers::Entry const& entry) { return entry.reader == reader; });
    if (!reader || isKnown || entries.size() >= maxReaders) {
        return false;
    }
    auto const behind =
        std::upper_bound(entries.begin(), entries.end(), priority,
                         [](int wanted, Readers::Entry const& entry) { return wanted < entry.priority; });
    entries.insert(behind, Readers::Entry{reader, priority});
    return true;
}

bool FileReaderInfo::remove(Ptr<FileReaderInfo> const& reader) {
    Ptr<FileReaderInfo> const held(reader);  // so that it doesn't die under the lock
    auto& readers = immortal<Readers>();
    std::lock_guard const scope(readers.lock);
    return std::erase_if(readers.entries,
                         [&](Readers::Entry const& entry) { return entry.reader == reader; }) != 0;
}

DecoderInfo& DecoderInfo::instance() {
    return immortal<DecoderInfo>();
}

Ptr<iVideoDecoder> DecoderInfo::getDecoderFor(VideoDecompressionInfo const& info) const {
    std::vector<Ptr<iVideoDecoder>> candidates;
    {
        auto& decoders = immortal<Decoders>();
        std::lock_guard const scope(decoders.lock);
        candidates = decoders.list;
    }
    auto const found = std::find_if(candidates.begin(), candidates.end(),
                                    [&](auto const& decoder) { return decoder->canDecode(info); });
    return found == candidates.end() ? Ptr<iVideoDecoder>() : *found;
}

void DecoderInfo::add(Ptr<iVideoDecoder> const& decoder) {
    auto& decoders = immortal<Decoders>();
    std::lock_guard const scope(decoders.lock);
    decoders.list.push_back(decoder);
}

void DecoderInfo::remove(Ptr<iVideoDecoder> const& decoder) {
    Ptr<iVideoDecoder> const held(decoder);  // so that it doesn't die under the lock
    auto& decoders = immortal<Decoders>();
    std::lock_guard const scope(decoders.lock);
    std::erase(decoders.list, held);
}

}  // namespace Ox

void CodecPool::addKeeper(Ox::Ptr<iKeeper> const& keeper) {
    auto& keepers = immortal<Keepers>();
    std::lock_guard const scope(keepers.lock);
    keepers.list.push_back(keeper);
}

void CodecPool::removeKeeper(Ox::Ptr<iKeeper> const& keeper) {
    Ox::Ptr<iKeeper> const held(keeper);  // so that it doesn't die under the lock
    auto& keepers = immortal<Keepers>();
    std::lock_guard const scope(keepers.lock);
    std::erase(keepers.list, held);
}

void CodecPool::flushAllUnreferenced() {
    auto& keepers = immortal<Keepers>();
    std::vector<Ox::Ptr<iKeeper>> snapshot;
    {
        std::lock_guard const scope(keepers.lock);
        snapshot = keepers.list;
    }
    for (Ox::Ptr<iKeeper> const& keeper : snapshot) {
        keeper->flushUnreferenced();
    }
}
