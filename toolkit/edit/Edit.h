#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxIdentified.h"
#include "ole/Ox/OxObject.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/edit/EditChanType.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/sound/AudioMetadata.h"
#include "toolkit/sound/SampleRate.h"

template <class T>
using Vector = std::vector<T>;

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

/// Where a piece of a cel begins.
class ce_handle {
public:
    ce_handle() = default;
    explicit ce_handle(std::uint32_t index) : index_(index) {}

    [[nodiscard]] std::uint32_t index() const { return index_; }

private:
    std::uint32_t index_ = 0;
};

/// One channel of a clip, as the pieces of media that it shows one after the other.
class Cel : public virtual iObject {
public:
    [[nodiscard]] virtual ce_handle get_start_ceh() const { return {}; }
    /// How fast a piece is shown: 1.0 as it was recorded, exactly 0.0 for a still.
    [[nodiscard]] virtual double get_strip_velocity(ce_handle const& /*piece*/) const { return 1.0; }
};

/// What kind of change of a clip: 22 its media are elsewhere now.
using eEditModificationType = std::uint32_t;
inline constexpr eEditModificationType mediaMoved = 22;

/// One change of a clip.
struct EditModification {
    EditModification(eEditModificationType what, unsigned howMany) : type(what), count(howMany) {}

    eEditModificationType type;
    unsigned count;
};

/// The changes of a clip that belong together.
class EditModifications {
public:
    explicit EditModifications(EditModification const& modification) : all_{modification} {}

    void add(EditModification const& modification) { all_.push_back(modification); }
    [[nodiscard]] std::vector<EditModification> const& all() const { return all_; }

private:
    std::vector<EditModification> all_;
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

    /// False for a clip that isn't whole.
    [[nodiscard]] virtual bool isValid() const { return true; }
    /// The channel of a number, 0 the first picture or else the first of all.
    [[nodiscard]] virtual IdStamp getId(std::uint32_t /*number*/) const { return {}; }
    /// What is known of a channel; empty if there is nothing.
    [[nodiscard]] virtual Ox::Ptr<Cel> getCel(IdStamp const& /*channel*/) const { return {}; }
    /// Tells whoever shows the clip that it has changed.
    virtual void addModification(EditModifications const& /*modifications*/) {}

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
    /// The cookies of the clips that a search for these kinds finds, in an order that stays.
    ///
    /// @param source  1, the project's own clips
    /// @param kinds   mask of `eLogType`, and 4 and 0x8000 for what is listed nowhere else
    [[nodiscard]] virtual std::vector<Cookie> search(std::uint32_t /*source*/, std::uint32_t /*kinds*/) {
        return {};
    }

    [[nodiscard]] static iEditStore* instance() noexcept;
    /// Puts `store` in force, null for the host's own, and gives back the one before, null for the host's
    /// own. Not owned.
    static iEditStore* install(iEditStore* store) noexcept;
};

/// A clip held open. An empty one is harmless.
///
/// Ownership  Copies share what is open; the clip is closed with the last of them.
/// Threads    One at a time for each.
class EditPtr {
public:
    /// Closes what was open and opens the clip of `cookie`; afterwards empty if there is none.
    void i_open(Cookie const& cookie, int option = 0);
    void i_close() { open_ = nullptr; }

    explicit operator bool() const { return static_cast<bool>(open_); }
    Edit* operator->() const { return get(); }
    [[nodiscard]] Edit* get() const { return open_ ? open_->edit.get() : nullptr; }

private:
    /// One `open` of a store, and its `close`.
    struct Opened : public virtual iObject {
        Opened(iEditStore& from, Ox::Ptr<Edit> const& opened) : store(from), edit(opened) {}
        ~Opened() override { store.close(*edit); }

        iEditStore& store;
        Ox::Ptr<Edit> const edit;
    };

    Ox::Ptr<Opened> open_;
};
