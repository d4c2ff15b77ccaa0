#pragma once

#include "ole/Ox/OxPool.h"
#include "video/VideoReadQueue.h"

/// The pool of video read queues: made when the library is loaded, destroyed at process exit.
[[nodiscard]] Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority>& videoQueuePool() noexcept;

/// Releases a queue that a shut pool hasn't taken. On the queue's own worker, which can't wait for
/// itself, a thread made for that does it.
void releaseQueue(Ox::ExternalPtr<Ox::VideoReadQueue>& queue);
