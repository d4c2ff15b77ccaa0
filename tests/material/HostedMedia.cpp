#include "tests/material/HostedMedia.h"

#include <stdexcept>
#include <utility>

#include "host/memory/MemoryCatalogue.h"
#include "host/memory/MemoryEditStore.h"
#include "host/sqlite/SqliteCatalogue.h"
#include "host/sqlite/SqliteClips.h"

namespace test {

/// A clip of the host with what a test says of its time line.
class HostedMedia::TimeLine : public Edit {
public:
    TimeLine(Ox::Ptr<Edit> kept, ClipFacts const& facts) : kept_(std::move(kept)), facts_(facts) {}

    [[nodiscard]] Edit& kept() const { return *kept_; }

    [[nodiscard]] bool isEmpty(ExtentType type) const override {
        return type == Editable::mediaExtent && facts_.isEmpty;
    }
    [[nodiscard]] EditItem getItemAt(IdStamp const& channel, double seconds) const override {
        return channel == IdStamp(7) && seconds == 1.5 ? facts_.item : EditItem();
    }

    [[nodiscard]] configb const* getDecodeSettings() const override { return kept_->getDecodeSettings(); }
    void getChans(Vector<int>& channels, std::uint32_t kind, std::uint32_t mask) const override {
        kept_->getChans(channels, kind, mask);
    }
    [[nodiscard]] std::uint32_t getLogType() const override { return kept_->getLogType(); }
    [[nodiscard]] LightweightString<wchar_t> getName() const override { return kept_->getName(); }
    [[nodiscard]] bool isImage() const override { return kept_->isImage(); }
    [[nodiscard]] LightweightString<char> getAttrib(LightweightString<char> const& name) const override {
        return kept_->getAttrib(name);
    }
    [[nodiscard]] Cookie getCookie() const override { return kept_->getCookie(); }
    [[nodiscard]] CookieVec getReferences(std::uint32_t kind) const override {
        return kept_->getReferences(kind);
    }

private:
    Ox::Ptr<Edit> const kept_;
    ClipFacts const facts_;
};

HostedMedia::HostedMedia(Host host, std::shared_ptr<CallLog> calls) : calls_(std::move(calls)) {
    if (host == Host::memory) {
        catalogue_ = std::make_unique<MemoryCatalogue>();
        clips_ = std::make_unique<MemoryEditStore>();
    } else {
        std::string error;
        std::shared_ptr<ProjectFile> const file = ProjectFile::open(folder_.name("a.project"), error);
        if (!file) {
            throw std::runtime_error(error);
        }
        catalogue_ = std::make_unique<SqliteCatalogue>(file);
        clips_ = std::make_unique<SqliteEditStore>(file);
    }
    installedCatalogue_ = std::make_unique<InstalledCatalogue>(catalogue_.get());
    installedClips_ = std::make_unique<InstalledEditStore>(this);
}

HostedMedia::~HostedMedia() = default;

void HostedMedia::addClip(Cookie const& cookie, ClipFacts const& facts) {
    ClipRecord record;
    record.logType = facts.logType;
    record.isImage = facts.isImage;
    record.videoChannels = facts.videoCount;
    record.audioChannels = facts.audioCount;
    record.attributes[LightweightString<char>("chans")] = LightweightString<char>(facts.channels);
    clips_->set(cookie, record);
    facts_[cookie] = facts;
}

void HostedMedia::setReferences(Cookie const& cookie, std::uint32_t kind,
                                std::vector<Cookie> const& references) {
    clips_->setReferences(cookie, kind, references);
}

void HostedMedia::addEntry(Cookie const& cookie, MediaFileInfo const& original,
                           std::vector<MediaFileInfo> const& proxies) {
    catalogue_->addFile(cookie, original);
    for (MediaFileInfo const& proxy : proxies) {
        catalogue_->addFile(cookie, proxy);
    }
}

Ox::Ptr<Edit> HostedMedia::open(Cookie const& cookie) {
    calls_->add("edit.open");
    Ox::Ptr<Edit> const kept = clips_->open(cookie);
    return kept ? Ox::Ptr<Edit>(Ox::makePtr<TimeLine>(kept, facts_[cookie])) : Ox::Ptr<Edit>();
}

void HostedMedia::close(Edit& edit) {
    clips_->close(dynamic_cast<TimeLine&>(edit).kept());
}

}  // namespace test
