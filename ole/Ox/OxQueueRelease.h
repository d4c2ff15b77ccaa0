#pragma once

#include <memory>

#include "ole/Ox/OxPtr.h"
#include "ole/os/OS.h"

namespace Ox {

/// Releases a queue that a shut pool hasn't taken. On the queue's own worker, which can't wait for
/// itself, a thread made for that does it; if there is none to be had, the queue is left as it is, which
/// costs its memory and nothing more.
template <class Queue>
void releaseQueue(ExternalPtr<Queue>& queue) {
    if (!queue || !queue->isThisThreadTheWorker()) {
        queue.decRef();
        return;
    }
    ThreadDescription description;
    description.argument = new ExternalPtr<Queue>(std::move(queue));
    description.entry = [](void* argument) {
        std::unique_ptr<ExternalPtr<Queue>> const held(static_cast<ExternalPtr<Queue>*>(argument));
        held->decRef();
        return 0;
    };
    description.name = LightweightString<char>("QueueRelease");
    description.exceptionHandler = &threadExceptionHandler;
    static_cast<void>(OS()->getThreads().makeThread(description));
}

}  // namespace Ox
