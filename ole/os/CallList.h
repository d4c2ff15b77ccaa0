#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>
#include <vector>

#include "ole/os/ThreadNumber.h"

/// Members that are called one after the other without a lock held, and that may leave at any time.
///
/// Threads  Any. A member may join or leave from inside a call, its own included.
template <class Member>
class CallList {
public:
    using Id = std::uint64_t;

    /// Adds at the end. The result names the member to `remove`.
    Id add(Member member) {
        std::lock_guard const guard(lock_);
        members_.push_back({++lastId_, std::move(member)});
        return lastId_;
    }

    /// Takes a member out, if it is still in. After that no call of it is under way on another thread
    /// or to come.
    void remove(Id id) {
        std::vector<Entry> leaving;  // dies without the lock
        std::unique_lock guard(lock_);
        auto const found = find(id);
        if (found != members_.end()) {
            leaving.push_back(std::move(*found));
            members_.erase(found);
        }
        callEnded_.wait(guard, [&] { return !isCalledElsewhere(id); });
    }

    /// The name of the first member that equals `member`, 0 if there is none.
    [[nodiscard]] Id idOf(Member const& member) {
        std::lock_guard const guard(lock_);
        auto const found = std::find_if(members_.begin(), members_.end(),
                                        [&](Entry const& e) { return e.member == member; });
        return found == members_.end() ? 0 : found->id;
    }

    /// Calls `function` with every member that is there now and hasn't left by the time of its turn.
    template <class Function>
    void forEach(Function&& function) {
        for (Id const id : ids()) {
            Call call(*this, id);
            if (call.isMember) {
                function(call.member);
            }
        }
    }

private:
    struct Entry {
        Id id;
        Member member;
    };
    struct RunningCall {
        Id id;
        std::uint32_t thread;
    };

    /// One call from before to after it, so that it is known to be under way.
    struct Call {
        Call(CallList& owner, Id memberId) : list(owner), id(memberId) {
            std::lock_guard const guard(list.lock_);
            auto const found = list.find(id);
            isMember = found != list.members_.end();
            if (isMember) {
                member = found->member;
                list.running_.push_back({id, currentThreadNumber()});
            }
        }
        ~Call() {
            if (isMember) {
                list.end(id);
            }
        }
        Call(Call const&) = delete;
        Call& operator=(Call const&) = delete;

        CallList& list;
        Id const id;
        Member member{};
        bool isMember = false;
    };

    auto find(Id id) {
        return std::find_if(members_.begin(), members_.end(), [id](Entry const& e) { return e.id == id; });
    }

    [[nodiscard]] bool isCalledElsewhere(Id id) const {
        std::uint32_t const me = currentThreadNumber();
        return std::any_of(running_.begin(), running_.end(),
                           [&](RunningCall const& call) { return call.id == id && call.thread != me; });
    }

    std::vector<Id> ids() {
        std::lock_guard const guard(lock_);
        std::vector<Id> result;
        for (Entry const& entry : members_) {
            result.push_back(entry.id);
        }
        return result;
    }

    void end(Id id) {
        std::lock_guard const guard(lock_);
        std::uint32_t const me = currentThreadNumber();
        auto const found = std::find_if(running_.begin(), running_.end(), [&](RunningCall const& call) {
            return call.id == id && call.thread == me;
        });
        running_.erase(found);
        callEnded_.notify_all();
    }

    std::mutex lock_;
    std::condition_variable callEnded_;
    /// In the order in which they joined.
    std::vector<Entry> members_;
    std::vector<RunningCall> running_;
    Id lastId_ = 0;
};
