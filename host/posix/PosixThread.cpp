#include "host/posix/PosixThread.h"

#include <limits.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <string>

namespace {

/// Longest name that the kernel keeps of a thread.
constexpr std::size_t kernelNameLength = 15;
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

}  // namespace

PosixThread::~PosixThread() {
    if (isStarted_ && !isJoined_) {
        pthread_detach(handle_);
    }
}

bool PosixThread::start(Ox::Ptr<PosixThread> const& self) {
    ThreadAttributes const attributes(description_.stackSize);
    auto held = std::make_unique<Ox::Ptr<PosixThread>>(self);
    if (pthread_create(&handle_, attributes.get(), &PosixThread::run, held.get()) != 0) {
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
    self.kernelId_ = thisKernelId();
    std::string const name(self.description_.name.view().substr(0, kernelNameLength));
    pthread_setname_np(pthread_self(), name.c_str());
    self.started_.set();
    self.runEntry();
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
    } catch (std::exception const& exception) {
        description_.exceptionHandler({description_.name, LightweightString<char>(exception.what())});
    } catch (...) {
        description_.exceptionHandler({description_.name, LightweightString<char>("unknown exception")});
    }
}

/// A new thread runs at the process's own priority, so there is nothing to do for a normal one.
bool PosixThread::setPriority(ePriority priority) {
    if (priority != background) {
        return true;
    }
    auto const id = static_cast<id_t>(kernelId_);
    int const nice = std::min(getpriority(PRIO_PROCESS, 0) + backgroundNice, PRIO_MAX - 1);
    return setpriority(PRIO_PROCESS, id, nice) == 0;
}

void PosixThread::setAffinity(int mask) {
    if (mask == -1) {
        return;
    }
    cpu_set_t processors;
    CPU_ZERO(&processors);
    for (int bit = 0; bit < static_cast<int>(sizeof(mask) * CHAR_BIT); ++bit) {
        if ((static_cast<unsigned>(mask) >> bit & 1U) != 0) {
            CPU_SET(bit, &processors);
        }
    }
    sched_setaffinity(kernelId_, sizeof(processors), &processors);
}

bool PosixThread::waitForEnd(std::uint32_t waitMs) {
    if (ended_.wait(waitMs) == iThreadEvent::timedOut) {
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
