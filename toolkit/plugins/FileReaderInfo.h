#pragma once

#include <cstdint>

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/sound/AudioMetadata.h"

class FileReadInstance;
class PlayFileMetadataRep;

namespace Ox {

/// One reader of media files, and the registry of all of them.
///
/// The order of the registry is the order in which readers are tried: by their priority number, those
/// of one number in the order in which they were added. An index is 8 bits wide.
///
/// Threads  The three virtual operations come on any thread, several at once, for different files or
///          the same.
/// Errors   `openFile` answers empty when it can't. It is best that it never throws, and it must not
///          throw once it has opened a file before for another reader's sake; `canOpen` and
///          `getReadableTypes` must never throw: the file's name would stay blocked for good.
class FileReaderInfo : public virtual iObject {
public:
    /// Most readers that the registry takes.
    static constexpr unsigned maxReaders = 255;

    /// Opens the file and fills its metadata; empty on failure. May take seconds.
    [[nodiscard]] virtual Ptr<FileReadInstance> openFile(LightweightString<wchar_t> const& filename,
                                                         DecodeFormat const& format, OpenType type) = 0;
    /// A cheap test whether this reader should try the file at all.
    [[nodiscard]] virtual bool canOpen(LightweightString<wchar_t> const& filename, OpenType type) = 0;
    /// The mask of media that it can serve of a file that is described so.
    ///
    /// @param metadata  of the file as opened so far, perhaps by another reader; not null
    /// @param stream    the audio stream that is wanted, or a default
    [[nodiscard]] virtual std::uint32_t getReadableTypes(LightweightString<wchar_t> const& filename,
                                                         OpenType type, PlayFileMetadataRep* metadata,
                                                         Aud::Metadata const& stream) = 0;

    /// For the log.
    LightweightString<char> readerName;

    [[nodiscard]] static std::uint8_t getNumFileReaders();
    /// Empty for an index past the end.
    [[nodiscard]] static Ptr<FileReaderInfo> getFileReaders(unsigned char index);
    /// False if the registry is full or holds the reader already.
    static bool add(Ptr<FileReaderInfo> const& reader, int priority);
    static bool remove(Ptr<FileReaderInfo> const& reader);
};

}  // namespace Ox
