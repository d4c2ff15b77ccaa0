#include "playfile/playfile.h"

#include "files/PlayFileCache.h"
#include "playfile/Settings.h"
#include "toolkit/plugins/DecoderInfo.h"

void playfile_init() {
    static_cast<void>(getNumThreads());
    static_cast<void>(getReadPollDelay());
}

void playfile_exit() {
    playfile_close_all_files();
}

/// The decoders come second: the files that are closed first are what held them.
void playfile_close_all_files() {
    PlayFileCache::Shared()->closeAll();
    CodecPool::flushAllUnreferenced();
}
