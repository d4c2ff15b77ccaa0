#include "video/QueuePools.h"

#include "ole/os/Shutdown.h"

namespace {

Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority> pool(
    Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority>::noLimit);

/// At process exit the queues are stopped and the pool is shut before the pool is destroyed.
[[maybe_unused]] bool const isShutdownArranged = [] {
    Shutdown::runBeforeEarlierStatics();
    return true;
}();

}  // namespace

Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority>& videoQueuePool() noexcept {
    return pool;
}
