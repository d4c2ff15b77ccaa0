#include "tests/fakes/FakeCatalogue.h"

#include <utility>

/// One piece, shown at one speed.
class FakeCel : public Cel {
public:
    explicit FakeCel(double velocity) : velocity_(velocity) {}
    [[nodiscard]] ce_handle get_start_ceh() const override { return ce_handle(3); }
    [[nodiscard]] double get_strip_velocity(ce_handle const& piece) const override {
        return piece.index() == 3 ? velocity_ : 1.0;
    }

private:
    double const velocity_;
};

class FakeEdit : public Edit {
public:
    FakeEdit(Cookie const& cookie, std::shared_ptr<CallLog> calls, std::unique_ptr<configb> settings)
        : cookie_(cookie), calls_(std::move(calls)), settings_(std::move(settings)) {}
    [[nodiscard]] Cookie getCookie() const override { return cookie_; }
    [[nodiscard]] bool wantsAudioMetadata() const override { return wantsAudio; }
    void setAudioMetadata(std::vector<Aud::Metadata> const& streams) override {
        calls_->add("edit.setAudioMetadata " + std::to_string(streams.size()));
    }
    [[nodiscard]] Aud::SampleRate getAudioInputSampleRate() const override { return audioRate; }
    [[nodiscard]] configb const* getDecodeSettings() const override { return settings_.get(); }
    void getChans(Vector<int>& channels, std::uint32_t kind, std::uint32_t) const override {
        channels.assign(kind == Edit::videoChannels ? videoChannels : audioChannels, 0);
    }
    [[nodiscard]] CookieVec getReferences(std::uint32_t kind) const override {
        auto const found = referencesOfKind.find(kind);
        return found == referencesOfKind.end() ? references : found->second;
    }
    [[nodiscard]] std::uint32_t getLogType() const override { return facts.logType; }
    [[nodiscard]] LightweightString<wchar_t> getName() const override { return wide(facts.name); }
    [[nodiscard]] bool isValid() const override { return facts.isValid; }
    [[nodiscard]] IdStamp getId(std::uint32_t number) const override { return IdStamp(number + 1); }
    [[nodiscard]] Ox::Ptr<Cel> getCel(IdStamp const& channel) const override {
        bool const isThere = channel == IdStamp(1) && facts.velocity;
        return isThere ? Ox::Ptr<Cel>(Ox::makePtr<FakeCel>(*facts.velocity)) : Ox::Ptr<Cel>();
    }
    void addModification(EditModifications const& modifications) override {
        for (EditModification const& each : modifications.all()) {
            calls_->add("edit.modification " + cookie_.asString().str() + " " + std::to_string(each.type) +
                        " " + std::to_string(each.count));
        }
    }

    bool wantsAudio = false;
    Aud::SampleRate audioRate;
    std::size_t videoChannels = 0;
    std::size_t audioChannels = 0;
    CookieVec references;
    std::map<std::uint32_t, CookieVec> referencesOfKind;
    FakeCatalogue::ClipFacts facts;

private:
    Cookie const cookie_;
    std::shared_ptr<CallLog> const calls_;
    std::unique_ptr<configb> const settings_;
};

namespace {

std::string textOf(Cookie const& cookie) {
    return cookie.asString().str();
}

}  // namespace

FakeCatalogue::FakeCatalogue(std::shared_ptr<CallLog> calls)
    : calls_(std::move(calls)),
      oldCatalogue_(SystemCache::install(this)),
      oldMaterial_(MaterialInfo::install(this)),
      oldEdits_(iEditStore::install(this)) {}

FakeCatalogue::~FakeCatalogue() {
    SystemCache::install(oldCatalogue_);
    MaterialInfo::install(oldMaterial_);
    iEditStore::install(oldEdits_);
}

void FakeCatalogue::addFile(Cookie const& cookie, std::string const& path, std::uint32_t level) {
    std::lock_guard const scope(lock_);
    files_[{textOf(cookie), level}] = path;
}

void FakeCatalogue::setStartOffset(Cookie const& cookie, std::int32_t offset) {
    std::lock_guard const scope(lock_);
    offsets_[textOf(cookie)] = offset;
}

void FakeCatalogue::addEdit(Cookie const& cookie, std::unique_ptr<configb> settings) {
    std::lock_guard const scope(lock_);
    edits_[textOf(cookie)] = Ox::makePtr<FakeEdit>(cookie, calls_, std::move(settings));
}

int FakeCatalogue::openEdits() const {
    std::lock_guard const scope(lock_);
    return openEdits_;
}

bool FakeCatalogue::findFileForCookie(Cookie const& cookie, LightweightString<wchar_t>& filename,
                                      DecodeFormat const& format) {
    if (onFind) {
        onFind();
    }
    std::lock_guard const scope(lock_);
    Cookie const asked =
        cookie.channel() == Cookie::wholeClip ? convertCookie(cookie, cookie.type(), 0) : cookie;
    auto const found = files_.find({textOf(asked), format.level});
    finds_.push_back(textOf(cookie).substr(textOf(cookie).rfind('-') + 1) + " " +
                     std::to_string(format.level));
    if (found == files_.end()) {
        return false;
    }
    filename = wide(found->second);
    return true;
}

void FakeCatalogue::setChannels(Cookie const& cookie, std::size_t videoChannels, std::size_t audioChannels) {
    std::lock_guard const scope(lock_);
    FakeEdit& edit = *edits_.at(textOf(cookie));
    edit.videoChannels = videoChannels;
    edit.audioChannels = audioChannels;
}

void FakeCatalogue::wantAudioMetadata(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    edits_.at(textOf(cookie))->wantsAudio = true;
}

void FakeCatalogue::setAudioRate(Cookie const& cookie, Aud::SampleRate rate) {
    std::lock_guard const scope(lock_);
    edits_.at(textOf(cookie))->audioRate = rate;
}

void FakeCatalogue::modified(Edit&, LightweightString<char> const& description) {
    calls_->add("edit.modified \"" + description.str() + "\"");
}

void FakeCatalogue::updateRecord(Cookie const& cookie) {
    calls_->add("edit.updateRecord " + textOf(cookie));
}

void FakeCatalogue::setReferences(Cookie const& cookie, std::vector<Cookie> const& references) {
    std::lock_guard const scope(lock_);
    for (Cookie const& reference : references) {
        edits_.at(textOf(cookie))->references.add(reference);
    }
}

void FakeCatalogue::setReferences(Cookie const& cookie, std::uint32_t kind,
                                  std::vector<Cookie> const& references) {
    std::lock_guard const scope(lock_);
    CookieVec& listed = edits_.at(textOf(cookie))->referencesOfKind[kind];
    for (Cookie const& reference : references) {
        listed.add(reference);
    }
}

void FakeCatalogue::setFacts(Cookie const& cookie, ClipFacts const& facts) {
    std::lock_guard const scope(lock_);
    edits_.at(textOf(cookie))->facts = facts;
}

void FakeCatalogue::addEntry(Cookie const& cookie, MediaFileInfo const& original,
                             std::vector<MediaFileInfo> const& proxies) {
    addEntry(Ox::makePtr<FsysDirectoryEntry>(cookie, original, proxies));
}

void FakeCatalogue::addEntry(Ox::Ptr<FsysDirectoryEntry> const& entry) {
    std::lock_guard const scope(lock_);
    entries_[textOf(entry->getCookie())] = entry;
}

Ox::Ptr<FsysDirectoryEntry> FakeCatalogue::findEntryForCookie(Cookie const& cookie) {
    std::lock_guard const scope(lock_);
    auto const found = entries_.find(textOf(cookie));
    return found == entries_.end() ? Ox::Ptr<FsysDirectoryEntry>() : found->second;
}

std::vector<Ox::Ptr<FsysDirectoryEntry>> FakeCatalogue::getClipMediaFiles(Cookie const& clip) {
    std::lock_guard const scope(lock_);
    std::vector<Ox::Ptr<FsysDirectoryEntry>> files;
    for (auto const& [text, entry] : entries_) {
        if (entry->getCookie().uuid() == clip.uuid()) {
            files.push_back(entry);
        }
    }
    return files;
}

void FakeCatalogue::addFile(Cookie const& cookie, MediaFileInfo const& file, bool option) {
    calls_->add("catalogue.addFile " + textOf(cookie) + " " + narrow(file.materialFilename.getPath()) + " " +
                std::to_string(option));
    addEntry(cookie, file);
}

OxResult FakeCatalogue::removeFile(Cookie const& cookie, eMediaTypes types, bool option) {
    if (onRemove) {
        onRemove();
    }
    calls_->add("catalogue.removeFile " + textOf(cookie) + " " + std::to_string(types) + " " +
                std::to_string(option));
    std::lock_guard const scope(lock_);
    entries_.erase(textOf(cookie));
    return removal;
}

void FakeCatalogue::removeProxyFile(Cookie const& cookie, MediaFileInfo const& file) {
    calls_->add("catalogue.removeProxyFile " + textOf(cookie) + " " +
                narrow(file.materialFilename.getPath()));
    SystemCache::removeProxyFile(cookie, file);
}

void FakeCatalogue::renameProxyFile(Cookie const& cookie, LightweightString<wchar_t> const& from,
                                    LightweightString<wchar_t> const& to) {
    calls_->add("catalogue.renameProxyFile " + textOf(cookie) + " " + narrow(from) + " " + narrow(to));
    SystemCache::renameProxyFile(cookie, from, to);
}

std::uint32_t FakeCatalogue::updateStatus(Cookie const& cookie, eMediaTypes types) {
    calls_->add("catalogue.updateStatus " + textOf(cookie) + " " + std::to_string(types));
    return SystemCache::updateStatus(cookie, types);
}

DriveId FakeCatalogue::getDriveForCookie(Cookie const& cookie, EditChanType type) {
    calls_->add("catalogue.getDriveForCookie " + textOf(cookie) + " " + std::to_string(type));
    return SystemCache::getDriveForCookie(cookie, type);
}

std::vector<Cookie> FakeCatalogue::search(std::uint32_t source, std::uint32_t kinds) {
    calls_->add("projdb.search " + std::to_string(source) + " " + std::to_string(kinds));
    std::lock_guard const scope(lock_);
    std::vector<Cookie> cookies;
    for (auto const& [text, edit] : edits_) {
        cookies.push_back(edit->getCookie());
    }
    return cookies;
}

void FakeCatalogue::addFile(Cookie const& cookie, MaterialFilename const& material, bool option) {
    calls_->add("catalogue.addMaterial " + textOf(cookie) + " " + material.getDrive().letter() + " " +
                narrow(material.getPath()) + " " + std::to_string(option));
}

bool FakeCatalogue::writeHeader(Cookie const& cookie, SAV_HEADER const& written) {
    calls_->add("material.writeHeader " + textOf(cookie));
    header = written;
    return takesHeaders;
}

std::int32_t FakeCatalogue::getStartOffset(Cookie const& cookie) {
    if (onStartOffset) {
        onStartOffset(cookie);
    }
    std::lock_guard const scope(lock_);
    auto const found = offsets_.find(textOf(cookie));
    return found == offsets_.end() ? 0 : found->second;
}

Ox::Ptr<Edit> FakeCatalogue::open(Cookie const& cookie) {
    std::string const text = textOf(cookie);
    calls_->add("edit.open " + text);
    std::lock_guard const scope(lock_);
    auto const found = edits_.find(text);
    if (found == edits_.end()) {
        return {};
    }
    ++openEdits_;
    return found->second;
}

void FakeCatalogue::close(Edit&) {
    calls_->add("edit.close");
    std::lock_guard const scope(lock_);
    --openEdits_;
}
