#include "audio/AudioQueuePool.h"

#include "ole/os/Shutdown.h"

namespace {

Ox::Pool<Ox::AudioReadQueue, PlayEnginePriority> pool(
    Ox::Pool<Ox::AudioReadQueue, PlayEnginePriority>::noLimit);

/// At process exit the queues are stopped and the pool is shut before the pool is destroyed.
[[maybe_unused]] bool const isShutdownArranged = [] {
    Shutdown::runBeforeEarlierStatics();
    return true;
}();

}  // namespace

Ox::Pool<Ox::AudioReadQueue, PlayEnginePriority>& audioQueuePool() noexcept {
    return pool;
}
