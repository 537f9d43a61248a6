// Windows: threads from CreateThread and critical sections.
#include "ovra/ovThread.h"

#include "common/win32.h"

#include <new>

namespace {

// The new thread owns this copy of the task pointer, so a detached thread never runs a
// task its creator has already let go of.
DWORD WINAPI start_task(void* arg) {
    std::unique_ptr<std::shared_ptr<ovIThreadTask>> task(
        static_cast<std::shared_ptr<ovIThreadTask>*>(arg));
    ovINativeThread::run_task(task->get());
    return 0;
}

CRITICAL_SECTION* section(unsigned char* storage) {
    return reinterpret_cast<CRITICAL_SECTION*>(storage);
}

} // namespace

ovWinNativeThread::ovWinNativeThread(std::shared_ptr<ovIThreadTask> task)
    : ovINativeThread(std::move(task)), m_handle(nullptr) {
    if (!m_task)
        return;
    auto* share = new std::shared_ptr<ovIThreadTask>(m_task);
    m_handle = CreateThread(nullptr, 0, &start_task, share, 0, nullptr);
    if (!m_handle)
        delete share;
}

void ovWinNativeThread::join() {
    m_joined = 1;
    if (m_handle)
        WaitForSingleObject(m_handle, INFINITE);
}

ovWinNativeThread::~ovWinNativeThread() {
    if (m_handle)
        CloseHandle(m_handle);
}

static_assert(sizeof(CRITICAL_SECTION) <= sizeof(ovWinCriticalSection) - sizeof(void*),
              "ovWinCriticalSection's storage is too small");
static_assert(alignof(CRITICAL_SECTION) <= 8, "ovWinCriticalSection's storage is misaligned");

ovWinCriticalSection::ovWinCriticalSection() {
    new (m_section) CRITICAL_SECTION;
    InitializeCriticalSection(section(m_section));
}

void ovWinCriticalSection::enter() {
    EnterCriticalSection(section(m_section));
}

void ovWinCriticalSection::leave() {
    LeaveCriticalSection(section(m_section));
}

ovWinCriticalSection::~ovWinCriticalSection() {
    DeleteCriticalSection(section(m_section));
}
