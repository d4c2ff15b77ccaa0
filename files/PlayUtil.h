#pragma once

#include "files/FileReadInstance.h"
#include "files/FileWriteInstance.h"
#include "ole/Ox/OxString.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/image/CapturePacket.h"
#include "toolkit/image/DecodeFormat.h"
#include "toolkit/plugins/FileWriterInfo.h"

/// Opens media without the cache, writes and deletes them.
///
/// Threads  Any; it has no lock and may run for seconds. Two threads on one file are kept apart only
///          by `PlayFileCache`.
class PlayUtil {
public:
    /// Asks the registered readers in two passes: the first finds out what the file is, the second
    /// chooses who reads it, and a reader that knows nothing of the file borrows what the first found.
    ///
    /// @param streamIndex  the audio stream that is wanted; past the end a default description is used
    /// @return empty on failure, which is logged
    /// Errors  An exception from `canOpen`, `getReadableTypes` or a second `openFile` passes through.
    [[nodiscard]] static Ox::Ptr<FileReadInstance> openRead(LightweightString<wchar_t> const& filename,
                                                            DecodeFormat const& format, OpenType type,
                                                            unsigned int streamIndex);

    /// Opens the file that the catalogue has for a cookie; empty and silent if there is none.
    ///
    /// Deliberate  It opens for audio whatever the cookie is.
    [[nodiscard]] static Ox::Ptr<FileReadInstance> openRead(Cookie const& cookie, DecodeFormat const& format,
                                                            unsigned int streamIndex);

    /// Makes a new file with the first writer that can; empty if there is none or it fails.
    [[nodiscard]] static Ox::Ptr<FileWriteInstance> openWrite(LightweightString<wchar_t> const& filename,
                                                              Ox::FileWriterParams const& params);
    /// Writes samples, and counts them in the file's metadata: the used bytes of `data` divided by the bytes
    /// per sample of the first stream.
    ///
    /// @param callback  for the writer; may be null
    /// @return          1, or what the writer answers, and nothing is counted; 0 without a file
    static std::uint32_t OxAudioSamples_write(Ox::Ptr<FileWriteInstance>& file, Ox::Ptr<iMemHolder>& data,
                                              void (*callback)(RequestStatus));
    /// Writes the next frame. A writer that has more than 32 frames to write is waited for, 49 times 100 ms
    /// at most. After a failure the same frame may be sent again.
    ///
    /// @param file      not empty
    /// @param sampleId  the frame's number, which must be the count of those that were written
    /// @param callback  told `requestComplete` or `requestFailed`, not of a wrong number; may be null
    /// @return          1; 0 for a wrong number or a writer that doesn't catch up; what the writer answers
    static std::uint32_t OxVideoSample_write(Ox::Ptr<FileWriteInstance>& file, int sampleId,
                                             Ox::Ptr<CapturePacket>& packet, void (*callback)(RequestStatus));

    /// Deletes the media of one channel, has the cache forget their files, and deletes the waveform of sound.
    ///
    /// @param types  originals, proxies or both
    /// @return       1, also if the catalogue doesn't know the channel; else what the catalogue answers
    static std::uint32_t deletePlayFile(Cookie const& cookie, eMediaTypes types);
    /// The same for all channels of a clip: the video channels up to the first that is missing, and the audio
    /// channels as many as the setting `max_audio_chans_in_shot` says, gaps or not. The last failure counts.
    static std::uint32_t delete_material_files(Cookie cookie, eMediaTypes types);
    /// Adds the size of a channel's original to `total`, in bytes, if there is one. The answer is always 1.
    static std::uint32_t get_total_size(Cookie const& cookie, unsigned long* total);
    /// Gives an edit that wants it the description of its first channel's sound; true if that was done.
    static bool checkAudioMetadata(Cookie const& edit);
    /// Does nothing, and answers 0.
    static int checkVideoMetadata(Cookie const& edit);

    /// 2 for a cookie of type 'S', 1 for 'V', 0 for any other.
    [[nodiscard]] static OpenType getType(Cookie const& cookie);
};
