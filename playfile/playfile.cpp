#include "playfile/playfile.h"

#include "files/PlayFileCache.h"
#include "toolkit/plugins/DecoderInfo.h"
#include "video/FilePreOpen.h"

void playfile_init() {
    static_cast<void>(Ox::FilePreOpen::instance());
}

void playfile_exit() {
    playfile_close_all_files();
}

/// The decoders come second: the files that are closed first are what held them.
void playfile_close_all_files() {
    PlayFileCache::Shared()->closeAll();
    CodecPool::flushAllUnreferenced();
}

void playfile_close_files(Cookie const& cookie, eMediaTypes types) {
    PlayFileCache::Shared()->close(cookie, types);
    CodecPool::flushAllUnreferenced();
}
