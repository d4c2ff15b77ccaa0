#include "tests/fakes/TransferWorld.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/fakes/FakeCatalogue.h"
#include "tests/fakes/TranscriptLog.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/catalogue/DiskManager.h"
#include "toolkit/catalogue/MaterialLink.h"
#include "toolkit/services/Paths.h"
#include "transfer/ExternalDownloadTask.h"
#include "transfer/LocaliseTask.h"
#include "transfer/MaterialMove.h"

namespace fs = std::filesystem;

namespace test {
namespace {

constexpr std::size_t mediaBytes = 20'000;
constexpr char const* mediaEnd = "|end";
constexpr char const* partial = ".partial";

std::string contentsOf(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// Different for every name, so that no file can pass for another.
std::string mediaFor(std::string const& name) {
    return name + "|" + std::string(mediaBytes, name[name.size() / 2]) + mediaEnd;
}

bool isWhole(std::string const& contents) {
    std::string const end = mediaEnd;
    return contents.size() > mediaBytes &&
           contents.compare(contents.size() - end.size(), end.size(), end) == 0;
}

bool endsIn(std::string const& text, std::string const& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

Cookie clipOf(unsigned number) {
    return makeCookie(number, 'E', Cookie::wholeClip);
}
Cookie videoOf(unsigned number) {
    return makeCookie(number, 'V', 0);
}

}  // namespace

std::vector<std::string> const& TransferWorld::scenarios() {
    static std::vector<std::string> const all = {
        "single",        "proxy",    "chunked",       "sequence",      "remote", "shared",
        "shared-remote", "external", "relocate-copy", "relocate-move", "sound",  "relocate-move-sound"};
    return all;
}

TransferWorld::TransferWorld(std::string folder, std::string scenario)
    : folder_(std::move(folder)), scenario_(std::move(scenario)), files_(calls_, folder_) {
    for (char const* const name : {"m", "n", "out", "remote", "elsewhere"}) {
        fs::create_directories(folder_ + name);
    }
    std::string error;
    project_ = SqliteProject::open(wide(folder_ + "world.project"), error);
    if (!project_) {
        throw std::runtime_error(error);
    }
    project_->install();
    DiskManager::instance().setDriveRoot('M', wide(folder_ + "m"));
    DiskManager::instance().setDriveRoot('N', wide(folder_ + "n"));
    DiskManager::instance().setDriveForTask("import", 'M');
    ProjectSpacesManager::install(&spaces_);
    enterStore();
}

TransferWorld::~TransferWorld() {
    project_->uninstall();
}

void TransferWorld::enterStore() {
    if (scenario_ == "remote" || scenario_ == "shared-remote") {
        FakeRemoteSpace& space = spaces_.enterRemoteSpace({});
        space.originals[clipOf(1)] = {wide("far://r.mov")};
        if (scenario_ == "shared-remote") {
            space.originals[clipOf(2)] = {wide("far://r.mov")};
        }
    }
}

void TransferWorld::writeMedia(std::string const& path) {
    fs::create_directories(fs::path(folder_ + path).parent_path());
    std::ofstream(folder_ + path, std::ios::binary) << mediaFor(path);
}

MediaFileInfo TransferWorld::linked(std::string const& path, std::string const& target) const {
    bool const isRemote = target.rfind(TransferFiles::store, 0) == 0;
    return {MaterialFilename('M', wide(path)), isRemote ? wide(target) : wide(folder_ + target),
            mediaFor(isRemote ? "remote/" + target.substr(std::string(TransferFiles::store).size()) : target)
                .size()};
}

MediaFileInfo TransferWorld::own(std::string const& path) const {
    return {MaterialFilename('M', wide(path)), mediaFor("m/" + path).size()};
}

void TransferWorld::addClip(unsigned number, Cookie const& cookie, CookieMedia const& media, bool isMoving) {
    NewClip clip;
    clip.cookie = clipOf(number);
    clip.record.name = wide("Clip " + std::to_string(number));
    clip.record.logType = logShot;
    clip.record.isImage = !isMoving;
    clip.record.videoChannels = 1;
    clip.record.references[Edit::mediaReferences] = {cookie};
    clip.record.references[Edit::ownMediaReferences] = {cookie};
    clip.media = {{cookie, media}};
    project_->addClip(clip);
}

void TransferWorld::prepare() {
    auto const asProxy = [](MediaFileInfo info) {
        info.isProxyFile = true;
        info.streamCount = 2;
        return info;
    };
    if (scenario_ == "single" || scenario_ == "shared") {
        writeMedia("elsewhere/a.mov");
        addClip(1, videoOf(1), {linked("v1.mov", "elsewhere/a.mov"), {}});
        if (scenario_ == "shared") {
            addClip(2, makeCookie(2, 'S', 1), {linked("s2.mov", "elsewhere/a.mov"), {}});
        }
    } else if (scenario_ == "proxy") {
        writeMedia("remote/p.mov");
        writeMedia("m/v1.mov");
        addClip(1, videoOf(1), {own("v1.mov"), {asProxy(linked("p1.mov", "far://p.mov"))}});
    } else if (scenario_ == "chunked") {
        writeMedia("elsewhere/A_001.R3D");
        writeMedia("elsewhere/A_002.R3D");
        addClip(1, videoOf(1), {linked("v1.R3D", "elsewhere/A_001.R3D"), {}});
    } else if (scenario_ == "sequence") {
        for (char const* const number : {"1", "2", "3"}) {
            writeMedia(std::string("elsewhere/f000") + number + ".dpx");
        }
        addClip(1, videoOf(1), {linked("v1.dpx", "elsewhere/f0001.dpx"), {}});
    } else if (scenario_ == "remote" || scenario_ == "shared-remote") {
        writeMedia("remote/r.mov");
        addClip(1, videoOf(1), {MediaFileInfo(), {}});
        if (scenario_ == "shared-remote") {
            addClip(2, videoOf(2), {MediaFileInfo(), {}});
        }
    } else if (scenario_ == "external") {
        writeMedia("remote/r.mov");
        writeMedia("remote/p.mov");
        addClip(1, videoOf(1), {linked("v1.mov", "far://r.mov"), {asProxy(linked("p1.mov", "far://p.mov"))}});
    } else if (scenario_ == "sound" || scenario_ == "relocate-move-sound") {
        writeMedia("elsewhere/a.wav");
        addClip(1, makeCookie(1, 'S', 1), {linked("Sound/s1.wav", "elsewhere/a.wav"), {}});
        if (isRelocation()) {
            localise();
        }
    } else {
        for (auto const& [name, contents] : relocated()) {
            writeMedia("m/" + name);
        }
        addClip(1, videoOf(1), {own("deep/v1.mov"), {asProxy(own("p1.mov"))}});
        addClip(2, videoOf(2), {own("v2.mov"), {}});
    }
}

void TransferWorld::run() {
    Ox::Ptr<TranscriptLog> const log = Ox::makePtr<TranscriptLog>(calls_);
    std::set<Cookie> const clips = {clipOf(1), clipOf(2)};
    if (isRelocation()) {
        CookieVec items;
        for (Cookie const& clip : clips) {
            items.add(clip);
        }
        MaterialMove::relocate(
            'N', items, scenario_ == "relocate-copy" ? MaterialMove::copyFiles : MaterialMove::moveFiles,
            LoggerHandle(log));
        return;
    }
    if (scenario_ != "external") {
        localise();
        return;
    }
    ExternalDownloadTask::Args args;
    args.clips = clips;
    args.mediaTypes = mediaAll;
    args.settings.location = wide(folder_ + "out");
    args.settings.proxyExt = wide("mp4");
    auto const task = Ox::makePtr<ExternalDownloadTask>(args);
    task->setLog(log);
    task->execute();
}

void TransferWorld::localise() {
    LocaliseTask::Args args;
    args.clips = {clipOf(1), clipOf(2)};
    args.mediaTypes = scenario_ == "proxy" ? mediaProxy : mediaOriginal;
    args.clipSelection = LocaliseTask::selectLinked | LocaliseTask::selectDownloadable;
    auto const task = Ox::makePtr<LocaliseTask>(args);
    task->setLog(Ox::makePtr<TranscriptLog>(calls_));
    task->execute();
}

TransferWorld::Files TransferWorld::disk() const {
    Files found;
    for (char const* const place : {"m", "n", "out", "remote", "elsewhere"}) {
        for (auto const& entry : fs::recursive_directory_iterator(folder_ + place)) {
            if (!entry.is_regular_file()) {
                continue;
            }
            std::string const path = entry.path().string();
            LightweightString<wchar_t> const target = MaterialLink::readLink(wide(path));
            found[path.substr(folder_.size())] =
                target.empty() ? contentsOf(path) : "-> " + files_.shown(target);
        }
    }
    return found;
}

TransferWorld::Files TransferWorld::catalogue() const {
    Files found;
    for (unsigned const number : {1U, 2U}) {
        for (auto const& entry : SystemCache::instance()->getClipMediaFiles(clipOf(number))) {
            std::string text =
                files_.shown(entry->getPhysicalFilename()) + (entry->isLinked() ? " linked" : "");
            for (MediaFileInfo const& proxy : entry->getProxyFiles()) {
                text += ", proxy " + files_.shown(proxy.getPhysicalFilename());
            }
            found[entry->getCookie().asString().str()] = text;
        }
    }
    return found;
}

TransferWorld::End TransferWorld::end() const {
    End end{disk(), catalogue()};
    std::erase_if(end.disk, [](auto const& file) { return endsIn(file.first, partial); });
    return end;
}

TransferWorld::End TransferWorld::undisturbed(std::string const& scenario, int runs) {
    TemporaryFolder const folder;
    TransferWorld world(folder.file(""), scenario);
    world.prepare();
    for (int run = 0; run < runs; ++run) {
        world.run();
        if (std::string const fault = world.fault(); !fault.empty()) {
            throw std::runtime_error("an undisturbed transfer ends wrong: " + fault);
        }
    }
    return world.end();
}

bool TransferWorld::isProjectWhole() const {
    std::lock_guard const scope(project_->file().lock);
    return project_->file().isWhole();
}

std::string TransferWorld::fault() const {
    return faultOfDisk() + faultOfSources() + faultOfCatalogue();
}

/// Deliberate: frames of a sequence, and what is relocated, go straight to their names.
std::string TransferWorld::faultOfDisk() const {
    bool const goesStraight = isRelocation() || scenario_ == "sequence";
    std::string faults;
    for (auto const& [path, contents] : disk()) {
        bool const mayBeHalf = endsIn(path, partial) || goesStraight || contents.rfind("-> ", 0) == 0;
        if (!mayBeHalf && !isWhole(contents)) {
            faults += path + " is half a file\n";
        }
    }
    return faults;
}

TransferWorld::Files TransferWorld::relocated() const {
    if (!isRelocation()) {
        return {};
    }
    if (scenario_ == "relocate-move-sound") {
        return {{"Sound/s1.wav", mediaFor("elsewhere/a.wav")}};
    }
    Files files;
    for (char const* const name : {"deep/v1.mov", "deep/v1.sav", "p1.mov", "v2.mov", "v20.sav"}) {
        files[name] = mediaFor(std::string("m/") + name);
    }
    return files;
}

/// What lies elsewhere and in the store is never touched. What is relocated is whole in one place or the other.
std::string TransferWorld::faultOfSources() const {
    std::string faults;
    Files const now = disk();
    for (auto const& [path, contents] : now) {
        bool const isSource = path.rfind("elsewhere/", 0) == 0 || path.rfind("remote/", 0) == 0;
        if (isSource && contents != mediaFor(path)) {
            faults += path + " isn't what it was\n";
        }
    }
    for (auto const& [name, contents] : relocated()) {
        auto const at = [&](std::string const& path) {
            auto const found = now.find(path);
            return found != now.end() && found->second == contents;
        };
        if (!at("m/" + name) && !at("n/" + name)) {
            faults += name + " is whole nowhere\n";
        }
        if (name == "v20.sav" && !at("m/" + name)) {
            faults += "another clip's file was taken\n";
        }
    }
    return faults;
}

/// A clip that isn't linked to elsewhere and has a place is there.
std::string TransferWorld::faultOfCatalogue() const {
    std::string faults;
    for (unsigned const number : {1U, 2U}) {
        for (auto const& entry : SystemCache::instance()->getClipMediaFiles(clipOf(number))) {
            bool const hasPlace = !entry->materialFilename.getPath().empty();
            std::string const path = narrow(entry->getPhysicalFilename());
            bool const isHere = fs::exists(path) && isWhole(contentsOf(path));
            if (hasPlace && path.rfind(TransferFiles::store, 0) != 0 && !isHere) {
                faults += path.substr(folder_.size()) + " is said to be here\n";
            }
        }
    }
    return faults;
}

}  // namespace test
