#pragma once

#include <cstdint>
#include <limits>

#include "ole/Ox/OxIdentified.h"
#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "ole/os/Locks.h"
#include "toolkit/image/IndexInfoRep.h"
#include "toolkit/image/PlayFileMetadataRep.h"

/// An open media file of any kind.
///
/// Ownership  Held by counted pointers; it holds its metadata, which it always has.
/// Threads    `lastUse` belongs to the cache, under the cache's lock.
/// Lock order `lock` guards the making and the use of the file's queues; it is taken before the lock
///            of a pool or of a queue.
class PlayFile : public Identified, public iObject {
public:
    /// The stamp of a file that no cache has handed out.
    static constexpr std::uint64_t neverUsed = std::numeric_limits<std::uint64_t>::max();

    /// Makes the metadata from the name; the file itself isn't touched.
    explicit PlayFile(LightweightString<wchar_t> const& name)
        : filename(name), metadata(Ox::makePtr<PlayFileMetadataRep>(name)) {}
    PlayFile(PlayFile const&) = delete;
    PlayFile& operator=(PlayFile const&) = delete;

    /// Asks the reader's index for the stored unit that holds a frame; `info` stays empty without one.
    ///
    /// @param fileFrame  in the file's own numbering, the origin included
    virtual void OxFileIxCache_open(Ox::Ptr<IndexInfoRep>& info, unsigned int fileFrame) {
        static_cast<void>(info);
        static_cast<void>(fileFrame);
    }

    /// What is added to a position to get the file's own number of a frame.
    [[nodiscard]] virtual std::int32_t getVideoOrigin() const { return 0; }

    /// What has the file open, in a few words for people ("H.264 in MP4").
    [[nodiscard]] virtual LightweightString<char> getDescription() const = 0;

    LightweightString<wchar_t> filename;
    Ox::Ptr<PlayFileMetadataRep> metadata;
    std::uint64_t lastUse = neverUsed;
    CriticalSection lock{eLockRank::file, "PlayFile"};
};
