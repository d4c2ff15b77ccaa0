#include "tests/fakes/FakeCatalogue.h"

#include <utility>

namespace {

class FakeEdit : public Edit {
public:
    explicit FakeEdit(std::unique_ptr<configb> settings) : settings_(std::move(settings)) {}
    [[nodiscard]] configb const* getDecodeSettings() const override { return settings_.get(); }

private:
    std::unique_ptr<configb> const settings_;
};

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
    edits_[textOf(cookie)] = Ox::makePtr<FakeEdit>(std::move(settings));
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
    if (found == files_.end()) {
        return false;
    }
    filename = wide(found->second);
    return true;
}

std::int32_t FakeCatalogue::getStartOffset(Cookie const& cookie) {
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

Cookie makeCookie(unsigned clip, CookieType type, std::uint8_t channel) {
    Ox::UUID uuid;
    uuid.bytes[0] = 0xA5;
    uuid.bytes[14] = static_cast<std::uint8_t>(clip >> 8);
    uuid.bytes[15] = static_cast<std::uint8_t>(clip);
    return Cookie(uuid, type, channel);
}
