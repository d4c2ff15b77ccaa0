#pragma once

#include "toolkit/edit/ClipStore.h"

/// A clip as its record says, as it was when the clip was opened.
///
/// Threads  Any.
class RecordEdit final : public Edit {
public:
    RecordEdit(Cookie const& cookie, ClipRecord record, Ox::Ptr<iClipKeeper> keeper)
        : cookie_(cookie), record_(std::move(record)), keeper_(std::move(keeper)) {}

    [[nodiscard]] configb const* getDecodeSettings() const override;
    void getChans(Vector<int>& channels, std::uint32_t kind, std::uint32_t mask) const override;
    [[nodiscard]] std::uint32_t getLogType() const override { return record_.logType; }
    [[nodiscard]] LightweightString<wchar_t> getName() const override { return record_.name; }
    [[nodiscard]] bool isImage() const override { return record_.isImage; }
    [[nodiscard]] LightweightString<char> getAttrib(LightweightString<char> const& name) const override;
    [[nodiscard]] Cookie getCookie() const override { return cookie_; }
    /// As the store has it by now.
    [[nodiscard]] bool wantsAudioMetadata() const override;
    void setAudioMetadata(std::vector<Aud::Metadata> const& streams) override;
    [[nodiscard]] Aud::SampleRate getAudioInputSampleRate() const override { return record_.audioInputRate; }
    /// Its channels count from 1 here, video first.
    [[nodiscard]] IdStamp getId(std::uint32_t number) const override;
    /// A still stands, all else is shown as it was recorded.
    [[nodiscard]] Ox::Ptr<Cel> getCel(IdStamp const& channel) const override;
    [[nodiscard]] CookieVec getReferences(std::uint32_t kind) const override;

private:
    [[nodiscard]] bool isMadeOfClips() const;
    [[nodiscard]] CookieVec ownChannels() const;
    [[nodiscard]] LightweightString<char> namesOfChannels() const;

    Cookie const cookie_;
    ClipRecord const record_;
    Ox::Ptr<iClipKeeper> const keeper_;
};
