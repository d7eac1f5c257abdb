// A second thread for a load's own work, started off the caller's processor.
//
// A new thread is queued where the scheduler places it, and on a machine of
// two processors that is often the processor of the thread that made it,
// busy with the caller, while the other stays idle: the two then share one
// processor until the next balancing, a scheduler tick or more (measured: a
// helper that marks faces started 2 to 3 ms late, and ran beside its caller
// on one processor for up to 10 ms). A helper is therefore made with every
// processor of the process but the caller's, and takes them all back as soon
// as it runs; where the process has one processor, or the caller's is not
// known, it is made as any thread is.
#pragma once

#include <pthread.h>
#include <sched.h>

#include <new>
#include <utility>

class HelperThread {
  public:
    HelperThread() = default;
    ~HelperThread();  // joins a helper that still runs
    HelperThread(const HelperThread&) = delete;
    HelperThread& operator=(const HelperThread&) = delete;

    // Runs `body` on the helper. False, with nothing started, when the system
    // has no thread or memory to give, or a helper runs already.
    template <typename Body>
    bool start(Body body) {
        Task<Body>* task = new (std::nothrow) Task<Body>(std::move(body));
        if (task == nullptr) {
            return false;
        }
        if (!launch(task)) {
            delete task;
            return false;
        }
        return true;
    }
    // Waits for the body to return; does nothing when no helper runs.
    void join();
    // Whether a helper was started and not joined yet.
    bool joinable() const { return running_; }
    // The processor the caller was on when the helper was made, and the one
    // the helper first ran on (read it after join); -1 when not known.
    int callerProcessor() const { return callerProcessor_; }
    int firstProcessor() const { return firstProcessor_; }

  private:
    struct TaskBase {
        virtual ~TaskBase() = default;
        virtual void run() = 0;
        HelperThread* owner = nullptr;  // where firstProcessor goes
        cpu_set_t processors;           // the process's own set, taken back by the helper
        bool widen = false;             // whether the helper was made with fewer
    };
    template <typename Body>
    struct Task : TaskBase {
        explicit Task(Body b) : body(std::move(b)) {}
        void run() override { body(); }
        Body body;
    };

    bool launch(TaskBase* task);  // on success the helper owns the task
    static void* runTask(void* task);

    pthread_t thread_{};        // valid while running_
    bool running_ = false;      // started and not joined
    int callerProcessor_ = -1;  // see callerProcessor()
    int firstProcessor_ = -1;   // written by the helper before its body runs
};
