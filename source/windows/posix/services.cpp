// No WMI, Wow64 or activation contexts here; the process facts come from the kernel.
#include "ovra/ovWindowsServices.h"

#include <unistd.h>

utString ovWMI::value(const utString&, const utString&, utString& error) {
    error = utString("Instantiation of IWbemLocator failed");
    return utString("");
}

ovProcessWow64::ovProcessWow64() : m_ok(1), m_is_wow64(0) {
    get_wow64_info();
}

void ovProcessWow64::get_wow64_info() {
    m_ok = 1;
    m_is_wow64 = 0;
}

int ovProcessControl::getpid() const {
    return static_cast<int>(::getpid());
}

utString ovProcessControl::process_path() {
    char path[1024];
    const ssize_t n = readlink("/proc/self/exe", path, sizeof path - 1);
    if (n <= 0)
        return utString("");
    path[n] = '\0';
    return utString(path);
}

ovActivationContext::ovActivationContext()
    : m_context(reinterpret_cast<void*>(static_cast<intptr_t>(-1))), m_cookie(0) {}

ovActivationContext::ovActivationContext(const utString& module) : ovActivationContext() {
    become(module);
}

ovActivationContext::~ovActivationContext() = default;

void ovActivationContext::become(const utString& module) {
    become(module, 2);
}

// Nothing can be made from a module here; whatever was held is dropped all the same.
void ovActivationContext::become(const utString&, int) {
    if (m_context != reinterpret_cast<void*>(static_cast<intptr_t>(-1)))
        m_context = reinterpret_cast<void*>(static_cast<intptr_t>(-1));
}

void ovActivationContext::activate() {}

void ovActivationContext::deactivate() {
    m_cookie = 0;
}
