#include "bench/support/Footprint.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace bench {
namespace {

constexpr double bytesPerMiB = 1024.0 * 1024.0;
constexpr std::chrono::milliseconds lookInterval{20};
constexpr std::chrono::seconds rest{1};

double countEntries(char const* folder) {
    using Iterator = std::filesystem::directory_iterator;
    return static_cast<double>(std::distance(Iterator(folder), Iterator()));
}

double residentMemory() {
    std::ifstream file("/proc/self/statm");
    double allPages = 0;
    double residentPages = 0;
    file >> allPages >> residentPages;
    return residentPages * static_cast<double>(sysconf(_SC_PAGESIZE)) / bytesPerMiB;
}

}  // namespace

Footprint Footprint::now() {
    return {residentMemory(), countEntries("/proc/self/task"), countEntries("/proc/self/fd")};
}

/// The watcher leaves itself out. The last look comes when the work is done, so that short work is seen, too.
void watchWork(Sample& sample, std::function<bool()> const& work) {
    sample.startMiB = Footprint::now().residentMiB;
    std::jthread watcher([&sample](std::stop_token const& stop) {
        for (bool isLast = false; !isLast;) {
            isLast = stop.stop_requested();
            Footprint const now = Footprint::now();
            sample.peakThreads = std::max(sample.peakThreads, now.threads - 1);
            sample.peakDescriptors = std::max(sample.peakDescriptors, now.descriptors);
            std::this_thread::sleep_for(isLast ? std::chrono::milliseconds(0) : lookInterval);
        }
    });
    measureTime(sample, work);
}

void lookAfterRest(Sample& sample) {
    std::this_thread::sleep_for(rest);
    Footprint const now = Footprint::now();
    sample.restMiB = now.residentMiB;
    sample.restThreads = now.threads;
    sample.restDescriptors = now.descriptors;
}

}  // namespace bench
