#include "host/posix/PosixThread.h"

#include <cxxabi.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <exception>
#include <memory>

#include "host/posix/PosixErrors.h"

namespace {

/// Longest name that the kernel keeps of a thread.
constexpr std::uint32_t kernelNameLength = 15;
/// A background thread gives way by this much; a thread may always lower itself.
constexpr int backgroundNice = 1;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
/// Instrumented code needs several times the stack.
constexpr std::size_t stackFactor = 8;
#else
constexpr std::size_t stackFactor = 1;
#endif

thread_local PosixThread const* currentThread = nullptr;

pid_t thisKernelId() {
    return static_cast<pid_t>(syscall(SYS_gettid));
}

std::size_t usableStackSize(std::uint32_t asked) {
    std::size_t const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    std::size_t const wanted =
        std::max<std::size_t>(asked * stackFactor, static_cast<std::size_t>(sysconf(_SC_THREAD_STACK_MIN)));
    return (wanted + page - 1) / page * page;
}

class ThreadAttributes {
public:
    explicit ThreadAttributes(std::uint32_t stackSize) {
        pthread_attr_init(&attributes_);
        if (stackSize != 0) {
            pthread_attr_setstacksize(&attributes_, usableStackSize(stackSize));
        }
    }
    ~ThreadAttributes() { pthread_attr_destroy(&attributes_); }
    ThreadAttributes(ThreadAttributes const&) = delete;
    ThreadAttributes& operator=(ThreadAttributes const&) = delete;
    [[nodiscard]] pthread_attr_t const* get() const { return &attributes_; }

private:
    pthread_attr_t attributes_;
};

/// Cut where a character begins.
LightweightString<char> kernelName(LightweightString<char> const& name) {
    auto const isInsideCharacter = [&name](std::uint32_t at) {
        return (static_cast<unsigned char>(name[at]) & 0xC0) == 0x80;
    };
    std::uint32_t length = std::min(name.length(), kernelNameLength);
    while (length != 0 && length < name.length() && isInsideCharacter(length)) {
        --length;
    }
    return LightweightString<char>(name.c_str(), length);
}

}  // namespace

PosixThread::~PosixThread() {
    if (isStarted_ && !isJoined_) {
        pthread_detach(handle_);
    }
}

bool PosixThread::start(Ox::Ptr<PosixThread> const& self) {
    ThreadAttributes const attributes(description_.stackSize);
    auto held = std::make_unique<Ox::Ptr<PosixThread>>(self);
    int const error = pthread_create(&handle_, attributes.get(), &PosixThread::run, held.get());
    if (error != 0) {
        keepSystemError(error);
        return false;
    }
    static_cast<void>(held.release());
    isStarted_ = true;
    started_.wait(noTimeLimit);
    return true;
}

void* PosixThread::run(void* argument) {
    std::unique_ptr<Ox::Ptr<PosixThread>> const held(static_cast<Ox::Ptr<PosixThread>*>(argument));
    PosixThread& self = **held;
    currentThread = &self;
    self.setKernelId(thisKernelId());
    pthread_setname_np(pthread_self(), kernelName(self.description_.name).c_str());
    self.started_.set();
    self.runEntry();
    self.setKernelId(0);
    self.ended_.set();
    return nullptr;
}

/// Without a handler an exception ends the process, as it would in any thread.
void PosixThread::runEntry() {
    if (!description_.exceptionHandler) {
        description_.entry(description_.argument);
        return;
    }
    try {
        description_.entry(description_.argument);
    } catch (abi::__forced_unwind const&) {
        throw;  // the C library ends the thread
    } catch (std::exception const& exception) {
        hadException(exception.what());
    } catch (...) {
        hadException("unknown exception");
    }
}

void PosixThread::hadException(char const* message) {
    description_.exceptionHandler({description_.name, LightweightString<char>(message)});
}

void PosixThread::setKernelId(pid_t kernelId) {
    std::lock_guard const scope(kernelIdLock_);
    kernelId_ = kernelId;
}

/// False if the thread has ended.
template <class Function>
bool PosixThread::withKernelId(Function const& function) {
    std::lock_guard const scope(kernelIdLock_);
    return kernelId_ != 0 && function(kernelId_);
}

/// A thread begins with the priority of the one that made it, so there is something to do for a normal
/// one too.
bool PosixThread::setPriority(ePriority priority) {
    int const ofProcess = getpriority(PRIO_PROCESS, static_cast<id_t>(getpid()));
    int const nice = std::min(ofProcess + (priority == background ? backgroundNice : 0), PRIO_MAX - 1);
    return withKernelId([nice](pid_t kernelId) {
        bool const isDone = setpriority(PRIO_PROCESS, static_cast<id_t>(kernelId), nice) == 0;
        return isDone || errno == EPERM || errno == EACCES;
    });
}

/// Any processor means those that the process began with, or was given since.
void PosixThread::setAffinity(int mask) {
    cpu_set_t processors;
    CPU_ZERO(&processors);
    if (mask == -1) {
        sched_getaffinity(getpid(), sizeof(processors), &processors);
    }
    for (unsigned bit = 0; mask != -1 && bit < sizeof(mask) * CHAR_BIT; ++bit) {
        if ((static_cast<unsigned>(mask) >> bit & 1U) != 0) {
            CPU_SET(bit, &processors);
        }
    }
    withKernelId([&processors](pid_t kernelId) {
        return sched_setaffinity(kernelId, sizeof(processors), &processors) == 0;
    });
}

bool PosixThread::waitForEnd(std::uint32_t waitMs) {
    if (isThisThread() || ended_.wait(waitMs) == iThreadEvent::timedOut) {
        return false;
    }
    std::lock_guard const scope(joinLock_);
    if (!isJoined_) {
        pthread_join(handle_, nullptr);
        isJoined_ = true;
    }
    return true;
}

bool PosixThread::isThisThread() const {
    return currentThread == this;
}
