// Windows: a thread that was not joined runs on, detached, and keeps its task alive.
#include "ovra/ovSystemOperations.h"
#include "ovra/ovThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

class WaitingTask final : public ovIThreadTask {
public:
    void run() override {
        while (gate.load() == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        finished = 1;
    }
    std::atomic<int> gate{0};
    std::atomic<int> finished{0};
};

} // namespace

TEST(ThreadWin, UnjoinedThreadRunsOnDetached) {
    const ovWinProcessThreadOperations ops;
    auto task = std::make_shared<WaitingTask>();
    std::weak_ptr<WaitingTask> watch = task;
    { ovThread thread(task, &ops); }
    // The creator lets go too; only the running thread holds the task now.
    std::shared_ptr<WaitingTask> held = watch.lock();
    task.reset();
    held->gate = 1;
    while (held->finished.load() == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    held.reset();
    while (!watch.expired())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}
