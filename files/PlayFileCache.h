#pragma once

#include <atomic>
#include <cstdint>
#include <list>
#include <map>

#include "files/FileReadInstance.h"
#include "ole/Ox/OxMultipleAccessQueue.h"
#include "ole/os/Callback.h"
#include "ole/os/Errors.h"
#include "ole/os/Reclaimable.h"
#include "toolkit/catalogue/OpenType.h"
#include "toolkit/catalogue/Repository.h"
#include "toolkit/image/ReadRequestIssuer.h"
#include "toolkit/services/RequestStatus.h"

class FileWriteInstance;

/// The open media files of the process.
///
/// Everybody who reads a clip goes through it: a file is opened once for each open type and shared. It
/// remembers failed opens too, so that a broken file isn't tried again on every frame. Few files stay
/// open: the bounds count files, and one in use is never closed.
///
/// Ownership  It holds the open files and may forget one at any time; who holds one keeps it working.
/// Threads    Any thread may call any operation. Readers open outside `cacheLock_`, one at a time for
///            one file name, in parallel for different ones.
/// Lock order `cacheLock_`, then that of the shared cache, then a queue's or pool's lock, then the guard
///            of the access queue. `cacheLock_` isn't held while a file is opened, nor when one is evicted.
/// Errors     Empty pointers and log lines. An exception that leaves a reader where it must not throw
///            passes through `open`.
/// Deliberate After such an exception the file's name stays held and its quarantine mark set.
class PlayFileCache : public Reclaimable {
public:
    /// The one cache, made at the first call with the bounds of the settings, destroyed at exit.
    [[nodiscard]] static PlayFileCache* Shared();

    /// @param sizeMin  files that stay open when memory is wanted
    /// @param sizeMax  files that may be open before another is opened; as an unsigned number, so that
    ///                 a negative one never closes anything
    PlayFileCache(int sizeMin, int sizeMax) : PlayFileCache(sizeMin, sizeMax, eLockRank::fileCache) {}
    /// Closes all files: the finished reads that a file's queue keeps hold the file, which holds the queue.
    ~PlayFileCache() override;
    PlayFileCache(PlayFileCache const&) = delete;
    PlayFileCache& operator=(PlayFileCache const&) = delete;

    /// The open file of that name and type, opened if need be; empty on failure.
    ///
    /// @param cookie       whose stored decode settings a video file gets
    /// @param format       for the reader of a file that isn't open yet; no part of the key
    /// @param streamIndex  the audio stream that is wanted
    [[nodiscard]] Ox::Ptr<FileReadInstance> open(LightweightString<wchar_t> const& filename,
                                                 Cookie const& cookie, DecodeFormat const& format,
                                                 OpenType type, unsigned int streamIndex);
    /// The same for the file that the catalogue has for the cookie.
    [[nodiscard]] Ox::Ptr<FileReadInstance> open(Cookie const& cookie, DecodeFormat const& format,
                                                 unsigned int streamIndex);
    /// The open file of a cookie; empty if it isn't open. It opens nothing.
    [[nodiscard]] Ox::Ptr<FileReadInstance> isOpen(Cookie const& cookie, DecodeFormat const& format,
                                                   unsigned int streamIndex);
    /// Frames for a 'V' cookie, audio samples for an 'S' one; 0 for any other or without a file.
    [[nodiscard]] static std::uint64_t getSampleCount(Cookie const& cookie);

    /// Makes the file of a clip's new material, files it in the catalogue and stores its header. It isn't
    /// kept in the cache.
    ///
    /// @return  empty on failure, which is told on the console unless it is that of the header
    /// Deliberate  A cookie of no medium gets its file all the same, without entry and header. After the
    ///             failure of a header the file and its entry stay.
    [[nodiscard]] static Ox::Ptr<FileWriteInstance> create(Cookie const& cookie,
                                                           Ox::FileWriterParams const& params);

    /// Closes the files that were unused longest until at most `bound` are open or none can go.
    void limitUsage(unsigned int bound);
    void limitUsage() override;
    void purge() override;
    void flushUnreferenced();
    /// Closes the one that was unused longest among those that nobody holds; false if there is none.
    bool removeOldestEntry();
    /// Forgets that the file failed to open, for video and for audio.
    void reOpen(LightweightString<wchar_t> const& filename);
    /// Writes the open files to console and log.
    void reportUsage() override;

    /// Forgets all open files; failed opens stay known.
    void closeAll();
    /// Forgets the files of a cookie, or of all channels of an edit, for the media that `types` names.
    ///
    /// Deliberate  Of an edit's video channels one more is looked at than there are.
    void close(Cookie const& cookie, eMediaTypes types);
    /// Forgets one file, open or failed, whoever still reads it. The result is always empty.
    Ox::Ptr<FileReadInstance> remove(Cookie const& cookie, DecodeFormat const& format);
    /// Forgets every open instance of a file; a failed open stays known.
    void remove(LightweightString<wchar_t> const& filename);

    /// Gives one media file of a clip another identity: the file that bears the clip's name, the catalogue's
    /// entry, and the waveform. False if there is no such file or it can't be renamed.
    ///
    /// Deliberate  It forgets the file in `Shared()` before it is known whether the file can be renamed.
    ///             Proxies aren't filed again.
    [[nodiscard]] bool renameMediaFile(Cookie const& from, Cookie const& to);
    /// The same for all channels of an edit. False if the new identity has media already, and if not all
    /// could be renamed; those that were stay so.
    [[nodiscard]] bool renameMediaFiles(Cookie const& from, Cookie const& to);

    /// Has every open file of an edit compute a size anew; `size` only ever shrinks.
    void recalculateSize(Cookie const& edit, unsigned int value, unsigned int& size);
    /// Subscribed by the constructor: when media can be reached again, failed opens are forgotten and
    /// the drives' listeners are told to look again. Answers 0.
    int handleRepositoryEvents(iAssetRepository::Event const& event);

    void addToQuarantine(LightweightString<wchar_t> const& filename, OpenType type);
    void removeFromQuarantine(LightweightString<wchar_t> const& filename, OpenType type);
    void removeFromQuarantine(Cookie const& cookie, OpenType type);
    /// False for a file that is being opened at this moment.
    [[nodiscard]] bool quarantineContains(LightweightString<wchar_t> const& filename, OpenType type);
    [[nodiscard]] bool quarantineContains(Cookie const& cookie, OpenType type);
    /// Whether opening failed in this process: for the type, for both if `type` is 3, for either if it
    /// is none of the known.
    [[nodiscard]] bool isCorrupt(LightweightString<wchar_t> const& filename, OpenType type);

    /// Asks for a frame of a clip.
    ///
    /// @param request     set to the request, or to an older one for the same frame; untouched on failure
    /// @param frame       on the clip's time line; half the clip's start offset is added
    /// @param ignored     has no effect
    /// @param format      the picture that is wanted
    /// @param issuer      told of the end, perhaps before this returns; may be empty. It may never be told
    ///                    of a read that it joined late, see `ReadRequestIssuer`; the status says it
    /// @return 1, or `oxFrameNotAvailable` if the file can't be opened or has no such frame
    /// Deliberate  It works on `Shared()`, whichever object it is called on.
    [[nodiscard]] OxResult videoReadRequest(Ox::Ptr<VideoReadRequest>& request, Cookie const& cookie,
                                            int frame, bool ignored, eResultType resultType,
                                            DecodeFormat const& format,
                                            Ox::Ptr<ReadRequestIssuer::Proxy> issuer);

    /// Builds a request for samples of the channel that a cookie names; the caller hands it to
    /// `queueReadRequest` of the request's file.
    ///
    /// @param result           set to the request; untouched on failure
    /// @param cookie           its channel counts from 1; one that the file doesn't have is served by the
    ///                         file's first channel
    /// @param start            first sample; the clip's start offset is added unless `startIsAbsolute`
    /// @param count            samples; the request is held to the end of the file
    /// @param issuer           told of the end; may be empty
    /// @return 1; 0 for a cookie without a channel; else `oxAudioRequestCannotBeServed`: no file, no such
    ///         channel, or a start behind the end. A failure is logged.
    [[nodiscard]] OxResult audioReadRequest(Ox::Ptr<AudioReadRequest>& result, Cookie const& cookie,
                                            unsigned long start, unsigned int count, eProxyLevel proxyLevel,
                                            Ox::Ptr<ReadRequestIssuer::Proxy> issuer, bool startIsAbsolute);

    [[nodiscard]] std::size_t getOpenCount() const { return openCount_.load(std::memory_order_relaxed); }

private:
    /// The key of both maps: ordered by type, then by the exact name.
    struct CacheEntry {
        LightweightString<wchar_t> filename;
        OpenType type;
        friend bool operator<(CacheEntry const& a, CacheEntry const& b) {
            return a.type != b.type ? std::int32_t(a.type) < std::int32_t(b.type) : a.filename < b.filename;
        }
    };
    using FileMap = std::map<CacheEntry, Ox::Ptr<FileReadInstance>>;

    PlayFileCache(int sizeMin, int sizeMax, eLockRank rank);

    /// True if the key is known, as open or as failed; `file` is then what it is known as.
    bool findKnown(CacheEntry const& key, Ox::Ptr<FileReadInstance>& file) PLAYFILE_REQUIRES(cacheLock_);
    [[nodiscard]] Ox::Ptr<FileReadInstance> openUnderAccess(CacheEntry const& key, Cookie const& cookie,
                                                            DecodeFormat const& format,
                                                            unsigned int streamIndex);
    [[nodiscard]] Ox::Ptr<FileReadInstance> openReal(CacheEntry const& key, Cookie const& cookie,
                                                     DecodeFormat const& format, unsigned int streamIndex);
    void applyDecodeSettings(Cookie const& cookie, FileReadInstance& file) PLAYFILE_REQUIRES(cacheLock_);
    void removeLevels(Cookie const& cookie, eMediaTypes types);
    void stamp(FileReadInstance& file) PLAYFILE_REQUIRES(cacheLock_);
    void noteOpenCount() PLAYFILE_REQUIRES(cacheLock_);

    Ox::MultipleAccessQueue<LightweightString<wchar_t>> accessQueue_;
    CriticalSection cacheLock_;
    FileMap openFiles_ PLAYFILE_GUARDED_BY(cacheLock_);
    /// Every value is empty. Looked up before the open files; not bounded.
    FileMap failedOpens_ PLAYFILE_GUARDED_BY(cacheLock_);
    /// Source of the last-use stamps.
    std::uint64_t useCounter_ PLAYFILE_GUARDED_BY(cacheLock_) = 0;
    /// Size of `openFiles_`, for those who look without the lock.
    std::atomic<std::size_t> openCount_{0};
    std::list<Ox::Ptr<Ox::Guard>> listeners_;
    int const sizeMin_;
    int const sizeMax_;
};
