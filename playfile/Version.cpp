#include "playfile/playfile.h"

#ifndef PLAYFILE_VERSION_STRING
#error "the build states the version"
#endif

char const* playfileDllVersionStr() {
    return PLAYFILE_VERSION_STRING;
}
