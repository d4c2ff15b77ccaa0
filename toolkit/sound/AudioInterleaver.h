#pragma once

#include <cstdint>

#include "toolkit/sound/AudioMetadata.h"
#include "toolkit/sound/StreamBufferList.h"

/// Takes samples of several channels apart that lie interleaved: all channels' first sample, then all
/// channels' second.
///
/// Threads  Any, for different lists.
class AudioInterleaver {
public:
    enum eResult : std::uint32_t {
        done = 0,
        badFormat = 1,  ///< no channels, or samples of no bytes
        noData = 2,     ///< there is no holder
    };

    /// Spreads the used bytes of `interleaved` over `list`, one buffer a channel, each filled from its
    /// start. A buffer of the list that is large enough is used, one that isn't there or is too small is
    /// made; the list gets as many buffers as there are channels. Used sizes, sample counts and formats
    /// are set. Bytes behind the last whole sample of all channels are passed over. `interleaved` is none of
    /// the list's buffers.
    ///
    /// @return 0 on success; the list is untouched with any other answer
    [[nodiscard]] static std::uint32_t deinterleaveAudio(Aud::Metadata const& metadata,
                                                         Ox::Ptr<iMemHolder> const& interleaved,
                                                         Aud::StreamBufferList& list);
};
