#pragma once

#include "ole/os/Errors.h"
#include "ole/os/FileManager.h"
#include "ole/os/Memory.h"
#include "ole/os/Threads.h"

/// The operating-system object: the root of every service that the library needs of the system.
///
/// It works before the first static object is made and after the last one has gone, is never
/// destroyed, and needs no replaced `operator new` for itself.
///
/// Threads  Any.
class iOS {
public:
    [[nodiscard]] virtual iMemoryService& getMemory() = 0;
    [[nodiscard]] virtual iThreadService& getThreads() = 0;
    [[nodiscard]] virtual iFileManager& getFileManager() = 0;
    [[nodiscard]] virtual iErrorService& getErrors() = 0;
    [[nodiscard]] virtual iDebugService& getDebug() = 0;
    /// Processors that this process may use, at least 1.
    [[nodiscard]] virtual unsigned getProcessorCount() = 0;

protected:
    ~iOS() = default;
};

/// The one in force: the POSIX host unless another one is installed.
[[nodiscard]] iOS* OS() noexcept;

/// Puts `os` in force and with it its memory, null for the POSIX host, and gives back the one before. A host calls it
/// before it uses anything else; it isn't owned and must outlive the process's last use.
iOS* installOS(iOS* os) noexcept;
