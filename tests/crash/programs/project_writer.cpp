/// Adds clip after clip to a project, each with a video, a sound and a proxy, until it is killed:  PROJECT
#include <unistd.h>

#include <string>

#include "host/sqlite/SqliteCatalogue.h"

namespace {

MediaFileInfo mediaOf(std::string const& name, bool isProxy) {
    MediaFileInfo file(MaterialFilename(DriveId::none, fromUTF8(name.c_str())), 1);
    file.isProxyFile = isProxy;
    return file;
}

}  // namespace

int main(int, char** arguments) {
    std::string error;
    auto const file = ProjectFile::open(fromUTF8(arguments[1]), error);
    if (!file) {
        return 1;
    }
    SqliteCatalogue catalogue(file);
    for (;;) {
        Ox::UUID const clip = Ox::UUID::generate();
        Cookie const video(clip, 'V', 0);
        catalogue.addFile(video, mediaOf("/m/video", false));
        catalogue.addFile(video, mediaOf("/m/proxy", true));
        catalogue.addFile(Cookie(clip, 'S', 1), mediaOf("/m/sound", false));
        std::string const line = video.asString().str() + "\n";
        [[maybe_unused]] ssize_t const written = write(STDOUT_FILENO, line.data(), line.size());
    }
}
