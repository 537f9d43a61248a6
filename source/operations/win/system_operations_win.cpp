// Windows: computer name, sleeping, process and threads, the environment.
#include "ovra/ovSystemOperations.h"

#include "common/win32.h"
#include "operations/env_names.h"

#include <cstdlib>
#include <memory>

namespace {

const char kComputerNameFailed[] = "GetComputerNameW failed";
const char kComputerNameWhere[] = " in ovWinSysInfoOperations::computer_name";

} // namespace

ovString ovWinSysInfoOperations::computer_name() const {
    DWORD size = 0;
    GetComputerNameW(nullptr, &size);
    if (size > 0) {
        // The size asked for counts the terminator; room for one more costs nothing.
        std::unique_ptr<wchar_t[]> buffer(new wchar_t[size + 1]());
        DWORD n = size + 1;
        if (GetComputerNameW(buffer.get(), &n) && n <= size) {
            int status = 0;
            ovString name(ovSTRING_UTF16, buffer.get(), static_cast<size_t>(n), status);
            if (status == 0)
                return name;
        }
    }
    return ovString::literal(kComputerNameFailed) + ovString::literal(kComputerNameWhere);
}

std::unique_ptr<ovICriticalSection> ovWinSynchOperations::create() const {
    return std::make_unique<ovWinCriticalSection>();
}

void ovWinSynchOperations::sleep(unsigned long milliseconds) const {
    Sleep(static_cast<DWORD>(milliseconds));
}

int ovWinProcessThreadOperations::current_process_id() const {
    return static_cast<int>(GetCurrentProcessId());
}

std::unique_ptr<ovINativeThread>
ovWinProcessThreadOperations::create_joinable_thread(std::shared_ptr<ovIThreadTask> task) const {
    if (!task)
        return nullptr;
    return std::make_unique<ovWinNativeThread>(std::move(task));
}

bool ovWinProcessEnvironmentOperations::put(const ovString& name, const ovString& value) {
    if (!ovra_internal::acceptable_env_name(name) || !ovra_internal::acceptable_env_value(value))
        return false;
    return _wputenv_s(name.convert(ovSTRING_WCS), value.convert(ovSTRING_WCS)) == 0;
}

ovString ovWinProcessEnvironmentOperations::get(const ovString& name) {
    const ovString none(ovSTRING_EMPTY);
    if (!ovra_internal::acceptable_env_name(name))
        return none;
    const wchar_t* wname = name.convert(ovSTRING_WCS);
    size_t size = 0;
    // Only the size counts here: some runtimes answer this query with ERANGE.
    _wgetenv_s(&size, nullptr, 0, wname);
    if (size == 0)
        return none;
    std::unique_ptr<wchar_t[]> buffer(new wchar_t[size]());
    size_t read = 0;
    // Another thread may have lengthened the value in between: that read fails, cleanly.
    if (_wgetenv_s(&read, buffer.get(), size, wname) != 0)
        return none;
    int status = 0;
    ovString value(ovSTRING_WCS, buffer.get(), status);
    return status == 0 ? value : none;
}

ovPathName ovWinProcessEnvironmentOperations::current_directory() {
    wchar_t small[MAX_PATH];
    DWORD n = GetCurrentDirectoryW(MAX_PATH, small);
    if (n == 0)
        return ovPathName();
    const wchar_t* text = small;
    std::unique_ptr<wchar_t[]> large;
    // Too long for MAX_PATH: n is the size needed, terminator included, and nothing
    // was written. One more call with that size (the directory may change in between:
    // then this fails rather than read what was not written).
    if (n >= MAX_PATH) {
        const DWORD need = n;
        large.reset(new wchar_t[need]());
        n = GetCurrentDirectoryW(need, large.get());
        if (n == 0 || n >= need)
            return ovPathName();
        text = large.get();
    }
    int status = 0;
    ovString path(ovSTRING_WCS, text, status);
    if (status != 0)
        return ovPathName();
    return ovPathName(path);
}
