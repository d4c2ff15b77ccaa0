#include "video/QueuePools.h"

#include <memory>

#include "ole/os/Shutdown.h"

namespace {

Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority> pool(
    Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority>::noLimit);

/// At process exit the queues are stopped and the pool is shut before the pool is destroyed.
[[maybe_unused]] bool const isShutdownArranged = [] {
    Shutdown::runBeforeEarlierStatics();
    return true;
}();

using QueuePtr = Ox::ExternalPtr<Ox::VideoReadQueue>;

int releaseOnThisThread(void* argument) {
    std::unique_ptr<QueuePtr> const queue(static_cast<QueuePtr*>(argument));
    queue->decRef();
    return 0;
}

}  // namespace

Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority>& videoQueuePool() noexcept {
    return pool;
}

/// Without a thread to be had the queue is left as it is, which costs its memory and nothing more.
void releaseQueue(QueuePtr& queue) {
    if (!queue || !queue->isThisThreadTheWorker()) {
        queue.decRef();
        return;
    }
    auto* const handedOver = new QueuePtr(std::move(queue));
    ThreadDescription description;
    description.entry = &releaseOnThisThread;
    description.argument = handedOver;
    description.name = LightweightString<char>("QueueRelease");
    description.exceptionHandler = &threadExceptionHandler;
    static_cast<void>(OS()->getThreads().makeThread(description));
}
