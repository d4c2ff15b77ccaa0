/// Calls the entry points in the order of the arguments, each "init", "exit", "close" or "read".
#include "playfile/playfile.h"

#include <string_view>

#include "tests/lifetime/TinyMedia.h"

int main(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
        std::string_view const step(arguments[i]);
        if (step == "init") {
            playfile_init();
        } else if (step == "exit") {
            playfile_exit();
        } else if (step == "close") {
            playfile_close_all_files();
        } else {
            tiny::RequestPtr const request = tiny::ask(tiny::open(), 1);
            tiny::await(request);
            tiny::say(tiny::statusOf(request));
        }
    }
    tiny::say("open: " + std::to_string(PlayFileCache::Shared()->getOpenCount()));
}
