#include "support/HelperThread.h"

#include <memory>

HelperThread::~HelperThread() {
    join();
}

void* HelperThread::runTask(void* argument) {
    std::unique_ptr<TaskBase> task(static_cast<TaskBase*>(argument));
    task->owner->firstProcessor_ = sched_getcpu();
    if (task->widen) {
        (void)sched_setaffinity(0, sizeof task->processors, &task->processors);
    }
    task->run();
    return nullptr;
}

bool HelperThread::launch(TaskBase* task) {
    if (running_) {
        return false;
    }
    task->owner = this;
    firstProcessor_ = -1;
    callerProcessor_ = sched_getcpu();
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) {
        return false;
    }
    const int caller = callerProcessor_;
    if (caller >= 0 && caller < CPU_SETSIZE &&
        sched_getaffinity(0, sizeof task->processors, &task->processors) == 0 &&
        CPU_ISSET(caller, &task->processors) && CPU_COUNT(&task->processors) > 1) {
        cpu_set_t others = task->processors;
        CPU_CLR(caller, &others);
        task->widen = pthread_attr_setaffinity_np(&attributes, sizeof others, &others) == 0;
    }
    const bool made = pthread_create(&thread_, &attributes, runTask, task) == 0;
    pthread_attr_destroy(&attributes);
    running_ = made;
    return made;
}

void HelperThread::join() {
    if (running_) {
        pthread_join(thread_, nullptr);
        running_ = false;
    }
}
