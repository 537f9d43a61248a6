// POSIX: host name, sleeping, process and threads, the environment.
#include "ovra/ovSystemOperations.h"

#include "operations/env_names.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {

// The Windows failure text, so that callers see one message on both platforms.
const char kComputerNameFailed[] = "GetComputerNameW failed";
const char kComputerNameWhere[] = " in ovWinSysInfoOperations::computer_name";

} // namespace

ovString ovPosixSysInfoOperations::computer_name() const {
    char buffer[HOST_NAME_MAX + 2] = {};
    // POSIX leaves termination of a cut name open; the last byte is never written.
    if (gethostname(buffer, sizeof buffer - 1) == 0 && buffer[0] != '\0') {
        int status = 0;
        ovString name(ovSTRING_UTF8, buffer, status);
        if (status == 0)
            return name;
    }
    return ovString::literal(kComputerNameFailed) + ovString::literal(kComputerNameWhere);
}

std::unique_ptr<ovICriticalSection> ovPosixSynchOperations::create() const {
    return std::make_unique<ovPosixCriticalSection>();
}

void ovPosixSynchOperations::sleep(unsigned long milliseconds) const {
    timespec left{static_cast<time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1000000L};
    while (nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

int ovPosixProcessThreadOperations::current_process_id() const {
    return static_cast<int>(getpid());
}

std::unique_ptr<ovINativeThread>
ovPosixProcessThreadOperations::create_joinable_thread(std::shared_ptr<ovIThreadTask> task) const {
    if (!task)
        return nullptr;
    return std::make_unique<ovLinuxNativeThread>(std::move(task));
}

bool ovPosixProcessEnvironmentOperations::put(const ovString& name, const ovString& value) {
    if (!ovra_internal::acceptable_env_name(name) || !ovra_internal::acceptable_env_value(value))
        return false;
    return setenv(name.convert(ovSTRING_UTF8), value.convert(ovSTRING_UTF8), 1) == 0;
}

ovString ovPosixProcessEnvironmentOperations::get(const ovString& name) {
    const ovString none(ovSTRING_EMPTY);
    if (!ovra_internal::acceptable_env_name(name))
        return none;
    const char* value = getenv(name.convert(ovSTRING_UTF8));
    if (!value)
        return none;
    int status = 0;
    ovString text(ovSTRING_UTF8, value, status);
    return status == 0 ? text : none;
}

ovPathName ovPosixProcessEnvironmentOperations::current_directory() {
    std::vector<char> buffer(PATH_MAX);
    while (!getcwd(buffer.data(), buffer.size())) {
        if (errno != ERANGE)
            return ovPathName();
        buffer.resize(buffer.size() * 2);
    }
    int status = 0;
    ovString path(ovSTRING_UTF8, buffer.data(), status);
    if (status != 0)
        return ovPathName();
    return ovPathName(path);
}
