/// The registry of audio decoders.
#include <algorithm>
#include <mutex>
#include <vector>

#include "ole/os/Immortal.h"
#include "toolkit/plugins/AudioDecoderInfo.h"

namespace {

struct Decoders {
    struct Entry {
        Ox::Ptr<Ox::AudioDecoderInfo> decoder;
        int priority;
    };
    std::mutex lock;
    /// By priority.
    std::vector<Entry> entries;
};

}  // namespace

namespace Ox {

/// The decoders are asked without the lock: what they do is theirs.
std::vector<Ptr<AudioDecoderInfo>> AudioDecoderInfo::getDecodersFor(Aud::Metadata const& metadata,
                                                                    Ptr<iMemHolder>& configuration) {
    std::vector<Decoders::Entry> candidates;
    {
        auto& decoders = immortal<Decoders>();
        std::lock_guard const scope(decoders.lock);
        candidates = decoders.entries;
    }
    std::vector<Ptr<AudioDecoderInfo>> able;
    for (Decoders::Entry const& candidate : candidates) {
        if (candidate.decoder->canDecode(metadata, configuration)) {
            able.push_back(candidate.decoder);
        }
    }
    return able;
}

bool AudioDecoderInfo::add(Ptr<AudioDecoderInfo> const& decoder, int priority) {
    auto& decoders = immortal<Decoders>();
    std::lock_guard const scope(decoders.lock);
    auto& entries = decoders.entries;
    bool const isKnown = std::any_of(entries.begin(), entries.end(),
                                     [&](Decoders::Entry const& entry) { return entry.decoder == decoder; });
    if (!decoder || isKnown) {
        return false;
    }
    auto const behind =
        std::upper_bound(entries.begin(), entries.end(), priority,
                         [](int wanted, Decoders::Entry const& entry) { return wanted < entry.priority; });
    entries.insert(behind, Decoders::Entry{decoder, priority});
    return true;
}

bool AudioDecoderInfo::remove(Ptr<AudioDecoderInfo> const& decoder) {
    Ptr<AudioDecoderInfo> const held(decoder);  // so that it doesn't die under the lock
    auto& decoders = immortal<Decoders>();
    std::lock_guard const scope(decoders.lock);
    return std::erase_if(decoders.entries,
                         [&](Decoders::Entry const& entry) { return entry.decoder == held; }) != 0;
}

}  // namespace Ox
