// Threads and critical sections through the platform's default operations.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"
#include "ovra/ovThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

const ovIProcessThreadOperations* thread_ops() {
    return ovFrustrumChooser(nullptr).process_thread_operations();
}

void wait_until(const std::atomic<int>& flag) {
    while (flag.load() == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// Runs once the test opens its gate; counts its runs and its own destruction.
class GatedTask final : public ovIThreadTask {
public:
    GatedTask(std::atomic<int>& gate, std::atomic<int>& runs, std::atomic<int>& destroyed)
        : m_gate(gate), m_runs(runs), m_destroyed(destroyed) {}
    ~GatedTask() override { ++m_destroyed; }
    void run() override {
        wait_until(m_gate);
        ++m_runs;
    }

private:
    std::atomic<int>& m_gate;
    std::atomic<int>& m_runs;
    std::atomic<int>& m_destroyed;
};

template <class Thrown> class ThrowingTask final : public ovIThreadTask {
public:
    explicit ThrowingTask(Thrown thrown) : m_thrown(thrown) {}
    void run() override {
        started = 1;
        throw m_thrown;
    }
    std::atomic<int> started{0};

private:
    Thrown m_thrown;
};

} // namespace

TEST(Thread, TaskDroppedByItsCreatorStillRunsToTheEnd) {
    std::atomic<int> gate{0}, runs{0}, destroyed{0};
    auto task = std::make_shared<GatedTask>(gate, runs, destroyed);
    ovThread thread(task, thread_ops());
    task.reset();
    EXPECT_EQ(destroyed, 0) << "the native thread shares the task";
    gate = 1;
    thread.join();
    EXPECT_EQ(runs, 1);
}

TEST(Thread, JoinAfterTheTaskFinishedReturns) {
    std::atomic<int> gate{1}, runs{0}, destroyed{0};
    ovThread thread(std::make_shared<GatedTask>(gate, runs, destroyed), thread_ops());
    wait_until(runs);
    thread.join();
    thread.join();
    EXPECT_EQ(runs, 1);
}

TEST(Thread, NullOperationsAskTheChooser) {
    std::atomic<int> gate{1}, runs{0}, destroyed{0};
    {
        ovThread thread(std::make_shared<GatedTask>(gate, runs, destroyed), nullptr);
        thread.join();
    }
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(destroyed, 1);
}

TEST(Thread, NullTaskGivesNoThread) {
    EXPECT_EQ(thread_ops()->create_joinable_thread(nullptr), nullptr);
    ovThread thread(nullptr, thread_ops());
    thread.join(); // nothing to wait for
}

TEST(Thread, ThrowingTaskEndsItsThreadOnly) {
    auto standard =
        std::make_shared<ThrowingTask<std::runtime_error>>(std::runtime_error("from run"));
    auto other = std::make_shared<ThrowingTask<int>>(7);
    ovThread first(standard, thread_ops());
    ovThread second(other, thread_ops());
    first.join();
    second.join();
    EXPECT_EQ(standard->started, 1);
    EXPECT_EQ(other->started, 1);
}

TEST(Thread, StandardLibraryThreadRunsOnEveryPlatform) {
    std::atomic<int> gate{1}, runs{0}, destroyed{0};
    ovLinuxNativeThread thread(std::make_shared<GatedTask>(gate, runs, destroyed));
    thread.join();
    thread.join();
    EXPECT_EQ(runs, 1);
    ovLinuxNativeThread none(nullptr);
    none.join();
}

TEST(CriticalSection, KeepsOtherThreadsOut) {
    ovCriticalSection section(ovFrustrumChooser(nullptr).synch_operations());
    long long counter = 0; // plain on purpose: the section is all that guards it
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                ovCriticalSectionLocker outer(&section);
                ovCriticalSectionLocker inner(&section); // recursive
                ++counter;
            }
        });
    for (std::thread& t : threads)
        t.join();
    EXPECT_EQ(counter, 4 * 5000);
}

TEST(CriticalSection, LockerLeavesWhenAnExceptionLeavesItsScope) {
    ovCriticalSection section(nullptr);
    try {
        ovCriticalSectionLocker locker(&section);
        throw std::runtime_error("leaving");
    } catch (const std::runtime_error&) {
    }
    std::atomic<int> entered{0};
    std::thread other([&] {
        ovCriticalSectionLocker locker(&section);
        entered = 1;
    });
    other.join(); // hangs if the section was not left
    EXPECT_EQ(entered, 1);
}

TEST(CriticalSection, NothingToLockDoesNothing) {
    class NoLocks final : public ovISynchOperations {
    public:
        std::unique_ptr<ovICriticalSection> create() const override { return nullptr; }
        void sleep(unsigned long) const override {}
    };
    const NoLocks none;
    ovCriticalSection section(&none);
    section.enter();
    section.leave();
    ovCriticalSectionLocker no_section(nullptr);
}
