#pragma once

#include <vector>

#include "toolkit/sound/AudioCodecInstance.h"

namespace Ox {

/// One kind of audio decoder, and the registry of all of them.
///
/// Threads  The two virtual operations come on any thread, several at once. They must not throw.
class AudioDecoderInfo : public virtual iObject {
public:
    /// A cheap test whether it decodes such a stream.
    ///
    /// @param configuration  the decoder's part of the container's header; may be empty
    [[nodiscard]] virtual bool canDecode(Aud::Metadata const& metadata,
                                         Ptr<iMemHolder> const& configuration) = 0;
    /// A decoder for one stream; empty if it can't be made.
    [[nodiscard]] virtual Ptr<AudioCodecInstance> makeInstance(Aud::Metadata const& metadata,
                                                               Ptr<iMemHolder> const& configuration) = 0;

    /// Those that can decode the stream, best first: by their priority number, those of one number in the
    /// order in which they were added.
    [[nodiscard]] static std::vector<Ptr<AudioDecoderInfo>> getDecodersFor(Aud::Metadata const& metadata,
                                                                           Ptr<iMemHolder>& configuration);
    /// False if there is none, or the registry holds it already.
    static bool add(Ptr<AudioDecoderInfo> const& decoder, int priority);
    static bool remove(Ptr<AudioDecoderInfo> const& decoder);
};

}  // namespace Ox
