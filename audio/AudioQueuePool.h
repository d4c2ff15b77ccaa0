#pragma once

#include "audio/AudioReadQueue.h"
#include "ole/Ox/OxPool.h"

/// The pool of audio read queues: made when the library is loaded, destroyed at process exit.
[[nodiscard]] Ox::Pool<Ox::AudioReadQueue, PlayEnginePriority>& audioQueuePool() noexcept;
