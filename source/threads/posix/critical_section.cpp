// POSIX: the critical section is a recursive mutex, as the Windows one is recursive.
#include "ovra/ovThread.h"

ovPosixCriticalSection::ovPosixCriticalSection() = default;

void ovPosixCriticalSection::enter() {
    m_mutex.lock();
}

void ovPosixCriticalSection::leave() {
    m_mutex.unlock();
}

ovPosixCriticalSection::~ovPosixCriticalSection() = default;
