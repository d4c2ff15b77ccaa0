/// Changes a project until it is killed, and prints a line for each change once it is made:  PROJECT WHAT
///
/// WHAT is `media` (clip after clip, file by file), `batch` (clips with their media, many at a time) or `live` (one
/// clip's media, through entries of the catalogue).
#include <unistd.h>

#include <string>

#include "host/sqlite/SqliteProject.h"

namespace {

constexpr int clipsInABatch = 20;

MediaFileInfo mediaOf(std::string const& name, bool isProxy) {
    MediaFileInfo file(MaterialFilename(DriveId::none, fromUTF8(name.c_str())), 1);
    file.isProxyFile = isProxy;
    return file;
}

void print(std::string const& text) {
    std::string const line = text + "\n";
    [[maybe_unused]] ssize_t const written = write(STDOUT_FILENO, line.data(), line.size());
}

[[noreturn]] void addMedia(SqliteProject& project) {
    for (;;) {
        Ox::UUID const clip = Ox::UUID::generate();
        Cookie const video(clip, 'V', 0);
        project.catalogue().addFile(video, mediaOf("/m/video", false));
        project.catalogue().addFile(video, mediaOf("/m/proxy", true));
        project.catalogue().addFile(Cookie(clip, 'S', 1), mediaOf("/m/sound", false));
        print(video.asString().str());
    }
}

NewClip newClip() {
    Ox::UUID const uuid = Ox::UUID::generate();
    NewClip clip;
    clip.cookie = Cookie(uuid, 'E', Cookie::wholeClip);
    clip.record.videoChannels = 1;
    clip.record.audioChannels = 1;
    clip.record.attributes["reel"] = "A001";
    clip.media = {{Cookie(uuid, 'V', 0), {mediaOf("/m/video", false), {mediaOf("/m/proxy", true)}}},
                  {Cookie(uuid, 'S', 1), {mediaOf("/m/sound", false), {}}}};
    return clip;
}

[[noreturn]] void addBatches(SqliteProject& project) {
    for (;;) {
        std::vector<NewClip> clips;
        for (int number = 0; number < clipsInABatch; ++number) {
            clips.push_back(newClip());
        }
        if (project.addClips(clips)) {
            print(clips.front().cookie.asString().str());
        }
    }
}

/// The clip's link names the number of the last change, and it has one proxy, which is another one each time.
[[noreturn]] void changeLive(SqliteProject& project) {
    Cookie const video(Ox::UUID{}, 'V', 0);
    if (!project.catalogue().fileExists(video)) {
        project.catalogue().addFile(video, mediaOf("/m/video", false));
    }
    std::string const run = std::to_string(getpid());
    for (int number = 1;; ++number) {
        auto const entry = project.catalogue().findEntryForCookie(video);
        entry->addFile(mediaOf("/m/proxy " + run + "-" + std::to_string(number), true));
        while (entry->getProxyFiles().size() > 1) {
            entry->removeFile(entry->getProxyFiles().front());
        }
        entry->setLinkedFilename(fromUTF8(("/far/" + std::to_string(number)).c_str()));
        print(std::to_string(number));
    }
}

}  // namespace

int main(int, char** arguments) {
    std::string error;
    auto const project = SqliteProject::open(fromUTF8(arguments[1]), error);
    std::string const what = arguments[2];
    if (project && what == "media") {
        addMedia(*project);
    } else if (project && what == "batch") {
        addBatches(*project);
    } else if (project && what == "live") {
        changeLive(*project);
    }
    return 1;
}
