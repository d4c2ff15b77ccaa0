/// The registry of audio decoders.
#include "host/memory/PriorityList.h"
#include "ole/os/Immortal.h"
#include "toolkit/plugins/AudioDecoderInfo.h"

namespace Ox {
namespace {

PriorityList<AudioDecoderInfo>& decoders() {
    return immortal<PriorityList<AudioDecoderInfo>>();
}

}  // namespace

std::vector<Ptr<AudioDecoderInfo>> AudioDecoderInfo::getDecodersFor(Aud::Metadata const& metadata,
                                                                    Ptr<iMemHolder>& configuration) {
    std::vector<Ptr<AudioDecoderInfo>> able = decoders().all();
    std::erase_if(able, [&](Ptr<AudioDecoderInfo> const& decoder) {
        return !decoder->canDecode(metadata, configuration);
    });
    return able;
}

bool AudioDecoderInfo::add(Ptr<AudioDecoderInfo> const& decoder, int priority) {
    return decoders().add(decoder, priority);
}

bool AudioDecoderInfo::remove(Ptr<AudioDecoderInfo> const& decoder) {
    return decoders().remove(decoder);
}

}  // namespace Ox
