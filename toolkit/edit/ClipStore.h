#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "toolkit/edit/ClipRecord.h"

/// Where the records of clips are kept. It may outlive its store.
///
/// Threads  Any.
class iClipKeeper : public virtual iObject {
public:
    /// Changes what is kept of a clip, empty for one that isn't there, and answers whether there was anything to
    /// change. It may be run more than once, on what is kept each time, and with locks held: it calls nobody.
    using Change = std::function<bool(std::optional<ClipRecord>&)>;

    /// Empty for a clip that isn't there.
    [[nodiscard]] virtual std::optional<ClipRecord> find(Cookie const& clip) = 0;
    /// The clips that are there with their `eLogType`, in the order of their cookies.
    [[nodiscard]] virtual std::vector<std::pair<Cookie, std::uint32_t>> getAll() = 0;
    /// Makes a change: on what is kept at this moment, all of it or nothing; false if it couldn't be kept.
    virtual bool change(Cookie const& clip, Change const& change) = 0;
};

/// A clip database whose clips are records, which the program sets.
///
/// Threads     Any. A clip that is open stays as it was when it was opened, but for the format of its sound, which all
///             know as soon as one is told.
/// Errors      A setter answers false if the change couldn't be kept.
/// Deliberate  A setter adds the clip if it isn't there.
class ClipStore : public iEditStore {
public:
    explicit ClipStore(Ox::Ptr<iClipKeeper> keeper) : keeper_(std::move(keeper)) {}

    [[nodiscard]] Ox::Ptr<Edit> open(Cookie const& cookie) override;
    void close(Edit& edit) override;
    /// Source 1 is all that is there. A clip is found if the mask has its log type or 0x8000.
    [[nodiscard]] std::vector<Cookie> search(std::uint32_t source, std::uint32_t kinds) override;
    /// How many clips are open.
    [[nodiscard]] int getOpenCount() const { return openCount_; }

    /// Empty for a clip that isn't there.
    [[nodiscard]] std::optional<ClipRecord> find(Cookie const& cookie) const { return keeper_->find(cookie); }
    /// Puts a record in place of all that was known of a clip.
    bool set(Cookie const& cookie, ClipRecord const& record);
    bool remove(Cookie const& cookie);

    /// Adds a clip without decode settings, or forgets its settings.
    bool add(Cookie const& cookie);
    /// Adds a clip with decode settings.
    bool add(Cookie const& cookie, configb const& decodeSettings);
    bool setName(Cookie const& cookie, LightweightString<wchar_t> const& name);
    /// @param logType  an `eLogType`
    bool setLogType(Cookie const& cookie, std::uint32_t logType);
    bool setIsImage(Cookie const& cookie, bool isImage);
    /// Says how many channels a clip has.
    bool setChannels(Cookie const& cookie, std::uint32_t videoChannels, std::uint32_t audioChannels);
    /// An empty text takes the attribute away.
    bool setAttrib(Cookie const& cookie, LightweightString<char> const& name,
                   LightweightString<char> const& text);
    /// Says what a clip refers to, of one kind.
    bool setReferences(Cookie const& cookie, std::uint32_t kind, std::vector<Cookie> const& references);
    /// Says at which rate a clip's sound was recorded.
    bool setAudioInputSampleRate(Cookie const& cookie, Aud::SampleRate rate);

private:
    bool change(Cookie const& cookie, std::function<void(ClipRecord&)> const& steps);

    Ox::Ptr<iClipKeeper> const keeper_;
    std::atomic<int> openCount_{0};
};
