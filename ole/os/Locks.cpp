/// The re-entrant lock on a futex.
///
/// `state_` says whether the lock is held and whether somebody may be asleep; only `owner_`'s own thread
/// ever finds its number there, so a relaxed look is enough to recognise a second entering.
#include "ole/os/Locks.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

#include "ole/os/ThreadNumber.h"

namespace {

constexpr std::uint32_t lockFree = 0;
constexpr std::uint32_t lockHeld = 1;
constexpr std::uint32_t lockContended = 2;

/// Puts errno back at the end: to wait for a lock isn't an operation whose failure anybody asks for.
class KeptErrno {
public:
    KeptErrno() noexcept : kept_(errno) {}
    ~KeptErrno() { errno = kept_; }
    KeptErrno(KeptErrno const&) = delete;
    KeptErrno& operator=(KeptErrno const&) = delete;

private:
    int const kept_;
};

void sleepWhile(std::atomic<std::uint32_t>& word, std::uint32_t value) noexcept {
    KeptErrno const kept;
    syscall(SYS_futex, &word, FUTEX_WAIT_PRIVATE, value, nullptr, nullptr, 0);
}

void wakeOne(std::atomic<std::uint32_t>& word) noexcept {
    KeptErrno const kept;
    syscall(SYS_futex, &word, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0);
}

void takeContended(std::atomic<std::uint32_t>& word) noexcept {
    while (word.exchange(lockContended, std::memory_order_acquire) != lockFree) {
        sleepWhile(word, lockContended);
    }
}

}  // namespace

void CriticalSection::enter() noexcept {
    std::uint32_t const self = currentThreadNumber();
    if (owner_.load(std::memory_order_relaxed) == self) {
        ++depth_;
        return;
    }
    LockOrder::aboutToTake(this, rank_, name_);
    std::uint32_t expected = lockFree;
    if (!state_.compare_exchange_strong(expected, lockHeld, std::memory_order_acquire)) {
        takeContended(state_);
    }
    owner_.store(self, std::memory_order_relaxed);
    depth_ = 1;
}

void CriticalSection::leave() noexcept {
    if (--depth_ != 0) {
        return;
    }
    owner_.store(0, std::memory_order_relaxed);
    LockOrder::released(this);
    if (state_.exchange(lockFree, std::memory_order_release) == lockContended) {
        wakeOne(state_);
    }
}

bool CriticalSection::isHeldByThisThread() const noexcept {
    return owner_.load(std::memory_order_relaxed) == currentThreadNumber();
}
