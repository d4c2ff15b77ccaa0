#pragma once

#include "ole/Ox/OxPool.h"
#include "video/VideoReadQueue.h"

/// The pool of video read queues: made when the library is loaded, destroyed at process exit.
[[nodiscard]] Ox::Pool<Ox::VideoReadQueue, PlayEnginePriority>& videoQueuePool() noexcept;
