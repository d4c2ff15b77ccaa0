#include "tools/playfile/Statistics.h"

#include "files/PlayFileCache.h"
#include "playfile/Counters.h"
#include "toolkit/services/TimedTask.h"

namespace cli {
namespace {

constexpr double nanosecondsPerMillisecond = 1e6;

Json describeCache(PlayFileCounters const& counters) {
    Json json;
    json["open"] = PlayFileCache::Shared()->getOpenCount();
    json["opened"] = counters.filesOpened.load();
    json["opensFailed"] = counters.opensFailed.load();
    json["evicted"] = counters.filesEvicted.load();
    json["hits"] = counters.cacheHits.load();
    return json;
}

Json describeQueue(PlayFileCounters const& counters) {
    Json json;
    json["queued"] = counters.requestsQueued.load();
    json["merged"] = counters.requestsMerged.load();
    json["dropped"] = counters.requestsDropped.load();
    json["framesRead"] = counters.framesRead.load();
    json["framesFailed"] = counters.framesFailed.load();
    return json;
}

Json describeSoundQueue(PlayFileCounters const& counters) {
    Json json;
    json["queued"] = counters.audioRequestsQueued.load();
    json["dropped"] = counters.audioRequestsDropped.load();
    json["readsOfAStream"] = counters.audioStreamReads.load();
    json["servedFromMemory"] = counters.audioChannelHits.load();
    json["read"] = counters.audioRequestsRead.load();
    json["failed"] = counters.audioReadsFailed.load();
    return json;
}

Json describeStreams(PlayFileCounters const& counters) {
    Json json;
    json["batches"] = counters.streamBatches.load();
    json["framesDecoded"] = counters.framesDecoded.load();
    json["framesFromHeldBatches"] = counters.streamFramesHeld.load();
    json["doubleDecodes"] = counters.streamDoubleDecodes.load();
    return json;
}

Json describePreOpens(PlayFileCounters const& counters) {
    Json json;
    json["queued"] = counters.preOpensQueued.load();
    json["opened"] = counters.preOpensOpened.load();
    json["failed"] = counters.preOpensFailed.load();
    return json;
}

Json describeSection(TimedTaskBase::Section const& section) {
    Json json;
    json["runs"] = section.count;
    json["totalMs"] = static_cast<double>(section.totalNs) / nanosecondsPerMillisecond;
    json["longestMs"] = static_cast<double>(section.longestNs) / nanosecondsPerMillisecond;
    return json;
}

Json describeTimes() {
    Json json = Json::object();
    for (Ox::Ptr<TimedTaskBase> const& task : TimedTaskManager::getAll()) {
        for (TimedTaskBase::Section const& section : task->getSections()) {
            json[task->getName().str() + " " + section.name.str()] = describeSection(section);
        }
    }
    return json;
}

}  // namespace

Json describeStatistics() {
    PlayFileCounters const& counters = playFileCounters();
    Json json;
    json["files"] = describeCache(counters);
    json["requests"] = describeQueue(counters);
    json["soundRequests"] = describeSoundQueue(counters);
    json["decoding"] = describeStreams(counters);
    json["preOpens"] = describePreOpens(counters);
    json["times"] = describeTimes();
    return json;
}

}  // namespace cli
