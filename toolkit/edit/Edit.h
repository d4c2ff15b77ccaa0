#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxIdentified.h"
#include "ole/Ox/OxObject.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/sound/AudioMetadata.h"
#include "toolkit/sound/SampleRate.h"

template <class T>
using Vector = std::vector<T>;

/// Which channels of a clip are meant: 1 video, 2 audio.
using EditChanType = std::uint32_t;
inline constexpr EditChanType videoChannel = 1;
inline constexpr EditChanType audioChannel = 2;

/// Which of them more exactly: 0 all.
using EditChanSubType = std::uint32_t;

/// What kind of clip an edit is.
enum eLogType : std::uint32_t {
    logUnknown = 0,
    logShot = 1,        ///< a recording, or a section of one
    logSequence = 2,    ///< cut together of others
    logGroup = 4,       ///< others that belong together
    logSync = 16,       ///< others that run side by side
    logEffect = 32,     ///< made of others, or of nothing
    logImage = 1024,    ///< a still, or numbered ones in a row
    logImported = 2048  ///< a file that was brought in as it is
};

/// What can be cut.
class Editable : public virtual iObject {
public:
    /// What of it a question is about: 1 its media.
    using ExtentType = std::uint32_t;
    static constexpr ExtentType mediaExtent = 1;

    /// True if nothing lies in it.
    [[nodiscard]] virtual bool isEmpty(ExtentType /*type*/) const { return false; }
};

/// A node of a clip's graph: a cut, a source, an effect.
class EditNode : public virtual iObject {};

/// An effect that takes the place of the media below it.
class EffectInstance_opu4h5a4j : public EditNode {};

/// Two neighbouring events of a channel, between which something is shown.
class CelEventPair {
public:
    CelEventPair() = default;
    explicit CelEventPair(Cookie const& strip) : strip_(strip), isValid_(true) {}

    [[nodiscard]] bool valid() const { return isValid_; }
    /// The media shown between the events.
    [[nodiscard]] Cookie stripCookie() const { return strip_; }

private:
    Cookie strip_;
    bool isValid_ = false;
};

/// What lies in a channel of a clip at a time.
struct EditItem {
    bool isThere = false;
    /// The topmost node there; may be empty.
    Ox::Ptr<EditNode> node;
    CelEventPair handle;
};

/// A clip of the clip database.
///
/// Threads  Any; an implementation takes its locks innermost.
class Edit : public Editable {
public:
    /// The decode settings stored with the clip; null if it has none. The result lives as long as the
    /// edit is open.
    [[nodiscard]] virtual configb const* getDecodeSettings() const = 0;

    /// What `getChans` lists.
    enum eChannelKind : std::uint32_t { videoChannels = 1, audioChannels = 2 };
    /// In `getChans`: every channel.
    static constexpr std::uint32_t allChannels = 15;
    /// In `getReferences`: the media files that the clip is made of, and edits among them.
    static constexpr std::uint32_t mediaReferences = 2;
    /// In `getReferences`: the clips that the clip is made of, itself if it is a shot.
    static constexpr std::uint32_t clipReferences = 3;
    /// In `getReferences`: the media files of the clip itself, what tells most of it first.
    static constexpr std::uint32_t ownMediaReferences = 4;

    /// Fills `channels` with one number for each channel of a kind.
    ///
    /// @param mask  which of them: `allChannels`
    virtual void getChans(Vector<int>& channels, std::uint32_t /*kind*/, std::uint32_t /*mask*/) const {
        channels.clear();
    }
    [[nodiscard]] virtual std::uint32_t getLogType() const { return logUnknown; }
    [[nodiscard]] virtual LightweightString<wchar_t> getName() const { return {}; }
    /// True for a still, and for numbered ones in a row.
    [[nodiscard]] virtual bool isImage() const { return false; }
    /// A text that is kept with the clip under a name; empty if there is none. "chans" lists the channels that are
    /// in use: V, A1, A2, ...
    [[nodiscard]] virtual LightweightString<char> getAttrib(LightweightString<char> const& /*name*/) const {
        return {};
    }
    /// What lies in a channel at a time in seconds.
    [[nodiscard]] virtual EditItem getItemAt(IdStamp const& /*channel*/, double /*seconds*/) const {
        return {};
    }
    /// Its own cookie.
    [[nodiscard]] virtual Cookie getCookie() const { return {}; }
    /// True if the clip doesn't know yet what its sound is.
    [[nodiscard]] virtual bool wantsAudioMetadata() const { return false; }
    virtual void setAudioMetadata(std::vector<Aud::Metadata> const& /*streams*/) {}
    /// The rate of its sound as it was recorded; none if it isn't known.
    [[nodiscard]] virtual Aud::SampleRate getAudioInputSampleRate() const { return {}; }

    /// The cookies that the clip refers to.
    [[nodiscard]] virtual CookieVec getReferences(std::uint32_t /*kind*/) const { return {}; }
};

/// The clip database: opens the clips that `EditPtr` names.
///
/// Threads  Any; called with locks of the library held, so it calls nobody back.
class iEditStore {
public:
    virtual ~iEditStore() = default;
    /// The clip of an edit cookie; empty if there is none.
    [[nodiscard]] virtual Ox::Ptr<Edit> open(Cookie const& cookie) = 0;
    /// Told once for each clip that `open` gave.
    virtual void close(Edit& edit) = 0;
    /// Told when somebody who has changed a clip is done. @param description  of the change; may be empty
    virtual void modified(Edit& /*edit*/, LightweightString<char> const& /*description*/) {}
    /// Told that what is kept of a clip for searching is to be brought up to date.
    virtual void updateRecord(Cookie const& /*cookie*/) {}

    [[nodiscard]] static iEditStore* instance() noexcept;
    /// Puts `store` in force, null for the host's own, and gives back the one before, null for the host's
    /// own. Not owned.
    static iEditStore* install(iEditStore* store) noexcept;
};

/// A clip held open. An empty one is harmless.
///
/// Threads  One at a time.
class EditPtr {
public:
    EditPtr() = default;
    EditPtr(EditPtr const&) = delete;
    EditPtr& operator=(EditPtr const&) = delete;
    ~EditPtr() { i_close(); }

    /// Closes what was open and opens the clip of `cookie`; afterwards empty if there is none.
    void i_open(Cookie const& cookie, int option = 0);
    void i_close();

    explicit operator bool() const { return static_cast<bool>(edit_); }
    Edit* operator->() const { return edit_.get(); }
    [[nodiscard]] Edit* get() const { return edit_.get(); }

private:
    Ox::Ptr<Edit> edit_;
    iEditStore* store_ = nullptr;
};
