#include "ole/os/WorkerThreadPool.h"

#include "ole/os/OS.h"

namespace Ox {

int WorkerThread::run(void* self) {
    static_cast<WorkerThread*>(self)->body_();
    return 0;
}

WorkerThreadPool::ThreadPtr WorkerThreadPool::beginThread(std::function<void()> body, char const* name,
                                                          iThread::ePriority priority) {
    ThreadPtr worker(new WorkerThread(std::move(body)));
    ThreadDescription description;
    description.entry = &WorkerThread::run;
    description.argument = worker.get();
    description.name = LightweightString<char>(name);
    description.exceptionHandler = &threadExceptionHandler;
    worker->thread_ = OS()->getThreads().makeThread(description);
    if (!worker->thread_) {
        return {};
    }
    worker->thread_->setPriority(priority);
    return worker;
}

/// A thread that ends itself leaves its object behind: its body is still running there.
void WorkerThreadPool::endThread(ThreadPtr& thread) {
    if (!thread) {
        return;
    }
    if (thread->thread_->isThisThread()) {
        static_cast<void>(new ThreadPtr(std::move(thread)));
        return;
    }
    thread->thread_->waitForEnd(iThread::noTimeLimit);
    thread.decRef();
}

}  // namespace Ox
