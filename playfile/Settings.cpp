#include "playfile/Settings.h"

#include <limits>

#include "toolkit/services/Settings.h"

namespace {

constexpr int defaultReaderThreads = 4;
constexpr int defaultReadPollDelayMs = 50;
constexpr int defaultCacheSizeMin = 2;
constexpr int defaultCacheSizeMax = 4;
constexpr int defaultMaxAudioChannels = 32;

/// No range is in force for any setting.
int readSetting(char const* key, int defaultValue) {
    return config_int(key, defaultValue, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
}

}  // namespace

int getNumThreads() {
    static int const value = readSetting("numReaderThreads", defaultReaderThreads);
    return value;
}

int getReadPollDelay() {
    static int const value = readSetting("ReadPollDelay", defaultReadPollDelayMs);
    return value;
}

int readCacheSizeMin() {
    return readSetting("playfileCacheSizeMin", defaultCacheSizeMin);
}

int readMaxAudioChannels() {
    return readSetting("max_audio_chans_in_shot", defaultMaxAudioChannels);
}

int readCacheSizeMax() {
    return readSetting("playfileCacheSizeMax", defaultCacheSizeMax);
}
