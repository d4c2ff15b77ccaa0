#pragma once

#include <string>

#include "files/PlayUtil.h"
#include "tests/fakes/CacheFixture.h"

/// Up to three readers, of which a test says what they can do.
class PlayUtilFixture : public CacheFixture {
protected:
    Ox::Ptr<FileReadInstance> open(OpenType type = OpenType::video, unsigned streamIndex = 0) {
        return PlayUtil::openRead(wide("/m/x.mov"), DecodeFormat(levelOriginal), type, streamIndex);
    }
    /// The calls to readers without the name that all share.
    CallLog::Lines readerCalls() {
        CallLog::Lines found;
        for (std::string const& line : calls->with("/m/x.mov ")) {
            if (line.substr(1, 1) == ".") {
                found.push_back(line.substr(0, line.find(' ')));
            }
        }
        return found;
    }
    CallLog::Lines logged() { return calls->with("log "); }
    static void knowNothing(PlayFileMetadataRep& metadata) {
        metadata.videoInfoCount = 0;
        metadata.audioInfoCount = 0;
    }
};
