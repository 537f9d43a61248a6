// Threads and critical sections through the platform's default operations.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"
#include "ovra/ovThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

const ovIProcessThreadOperations* thread_ops() {
    return ovFrustrumChooser(nullptr).process_thread_operations();
}

void wait_until(const std::atomic<int>& flag) {
    while (flag.load() == 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

// Runs the function it is given; counts its own destruction.
class FnTask final : public ovIThreadTask {
public:
    explicit FnTask(std::function<void()> fn, std::atomic<int>* destroyed = nullptr)
        : m_fn(std::move(fn)), m_destroyed(destroyed) {}
    ~FnTask() override {
        if (m_destroyed)
            ++*m_destroyed;
    }
    void run() override { m_fn(); }

private:
    std::function<void()> m_fn;
    std::atomic<int>* m_destroyed;
};

} // namespace

TEST(Thread, TaskDroppedByItsCreatorStillRunsToTheEnd) {
    std::atomic<int> gate{0}, runs{0}, destroyed{0};
    auto task = std::make_shared<FnTask>(
        [&] {
            wait_until(gate);
            ++runs;
        },
        &destroyed);
    ovThread thread(task, thread_ops());
    task.reset();
    EXPECT_EQ(destroyed, 0) << "the native thread shares the task";
    gate = 1;
    thread.join();
    EXPECT_EQ(runs, 1);
}

TEST(Thread, NullOperationsAskTheChooserAndJoinMayBeRepeated) {
    std::atomic<int> runs{0}, destroyed{0};
    {
        ovThread thread(std::make_shared<FnTask>([&] { ++runs; }, &destroyed), nullptr);
        wait_until(runs);
        thread.join(); // after the task finished
        thread.join();
    }
    EXPECT_EQ(runs, 1);
    EXPECT_EQ(destroyed, 1);
}

TEST(Thread, StandardLibraryThreadRunsOnEveryPlatform) {
    std::atomic<int> runs{0};
    ovLinuxNativeThread thread(std::make_shared<FnTask>([&] { ++runs; }));
    thread.join();
    thread.join();
    EXPECT_EQ(runs, 1);
}

TEST(Thread, NullTaskGivesNoThread) {
    EXPECT_EQ(thread_ops()->create_joinable_thread(nullptr), nullptr);
    ovThread thread(nullptr, thread_ops());
    thread.join(); // nothing to wait for
    ovLinuxNativeThread none(nullptr);
    none.join();
}

TEST(Thread, ThrowingTaskEndsItsThreadOnly) {
    std::atomic<int> started{0};
    ovThread first(std::make_shared<FnTask>([&] {
                       ++started;
                       throw std::runtime_error("from run");
                   }),
                   thread_ops());
    ovThread second(std::make_shared<FnTask>([&] {
                        ++started;
                        throw 7;
                    }),
                    thread_ops());
    first.join();
    second.join();
    EXPECT_EQ(started, 2);
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
