#pragma once

#include <cstdint>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "toolkit/catalogue/Cookie.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/sound/AudioMetadata.h"
#include "toolkit/sound/SampleRate.h"

template <class T>
using Vector = std::vector<T>;

/// A clip of the clip database.
///
/// Threads  Any; an implementation takes its locks innermost.
class Edit : public virtual iObject {
public:
    /// The decode settings stored with the clip; null if it has none. The result lives as long as the
    /// edit is open.
    [[nodiscard]] virtual configb const* getDecodeSettings() const = 0;

    /// What `getChans` lists.
    enum eChannelKind : std::uint32_t { videoChannels = 1, audioChannels = 2 };
    /// In `getChans`: every channel.
    static constexpr std::uint32_t allChannels = 15;
    /// In `getReferences`: the media files that the clip is made of.
    static constexpr std::uint32_t mediaReferences = 2;

    /// Fills `channels` with one number for each channel of a kind.
    ///
    /// @param mask  which of them: `allChannels`
    virtual void getChans(Vector<int>& channels, std::uint32_t /*kind*/, std::uint32_t /*mask*/) const {
        channels.clear();
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
