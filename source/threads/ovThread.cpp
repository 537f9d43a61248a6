#include "ovra/ovThread.h"

#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"

#include <system_error>

ovIThreadTask::~ovIThreadTask() = default;

ovINativeThread::~ovINativeThread() = default;

void ovINativeThread::run_task(ovIThreadTask* task) noexcept {
    // An exception leaving a thread's start routine would end the process; the task's
    // owner learns nothing more from join than that the work is over.
    if (!task)
        return;
    try {
        task->run();
    } catch (...) {
    }
}

ovLinuxNativeThread::ovLinuxNativeThread(std::shared_ptr<ovIThreadTask> task)
    : ovINativeThread(std::move(task)) {
    if (!m_task)
        return;
    // A thread the system refuses leaves nothing to join, as on Windows.
    try {
        m_thread = std::thread([task = m_task] { run_task(task.get()); });
    } catch (const std::system_error&) {
    }
}

void ovLinuxNativeThread::join() {
    m_joined = 1;
    if (m_thread.joinable())
        m_thread.join();
}

// A thread still joinable here ends the process: std::thread's own rule, kept.
ovLinuxNativeThread::~ovLinuxNativeThread() = default;

ovThread::ovThread(std::shared_ptr<ovIThreadTask> task, const ovIProcessThreadOperations* ops)
    : m_joined(0) {
    if (!ops)
        ops = ovFrustrumChooser(nullptr).process_thread_operations();
    if (task)
        m_thread = ops->create_joinable_thread(std::move(task));
}

void ovThread::join() {
    m_joined = 1;
    if (m_thread)
        m_thread->join();
}

ovThread::~ovThread() = default;

ovICriticalSection::~ovICriticalSection() = default;

ovDummyCriticalSection::~ovDummyCriticalSection() = default;

ovCriticalSection::ovCriticalSection(const ovISynchOperations* ops) {
    if (!ops)
        ops = ovFrustrumChooser(nullptr).synch_operations();
    m_section = ops->create();
}

ovCriticalSection::~ovCriticalSection() = default;
