// The conformance suites of the system operations and the library loader. Each check's
// expression is written to read as the rule it states, since its text is the report.
#include "ovra/ovSystemOpsTesters.h"

#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovSystemOperations.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace {

const ovString kComputerNameFailure =
    ovString::literal("GetComputerNameW failed in ovWinSysInfoOperations::computer_name");

// How long a check waits for a thread that should finish at once, and how long a thread
// that should be kept out is given to get in.
constexpr std::chrono::milliseconds kFinishLimit(5000);
constexpr std::chrono::milliseconds kKeptOutFor(100);

// True when flag reaches 1 within limit.
bool wait_for(const std::atomic<int>& flag, std::chrono::milliseconds limit) {
    const auto until = std::chrono::steady_clock::now() + limit;
    while (flag.load() == 0) {
        if (std::chrono::steady_clock::now() >= until)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// What a helper thread and the suite share; the helper keeps it alive even when it is
// left behind.
struct LockProbe {
    std::unique_ptr<ovICriticalSection> lock;
    std::atomic<int> started{0};
    std::atomic<int> entered{0};
    std::atomic<int> done{0};
};

// Stands for "some function" where a look-up must overwrite it.
void sentinel() {}

// Joins a helper that finished, or leaves it behind.
void finish(std::thread& helper, bool finished) {
    if (finished)
        helper.join();
    else
        helper.detach();
}

} // namespace

ovSysInfoOpsTester::ovSysInfoOpsTester(const ovISysInfoOperations* ops)
    : utUnitTest("ovSysInfoOpsTester"), m_ops(ops) {}

void ovSysInfoOpsTester::run() {
    if (!UT_CHECK(m_ops != nullptr))
        return;
    const ovString name = m_ops->computer_name();
    const bool computer_name_is_text = !name.invalid() && !name.failed() && !name.empty();
    UT_CHECK(computer_name_is_text);
    const bool computer_name_found = name != kComputerNameFailure;
    UT_CHECK(computer_name_found);
    UT_CHECK(m_ops->computer_name() == name);
}

ovSynchOpsTester::ovSynchOpsTester(const ovISynchOperations* ops, bool locks)
    : utUnitTest("ovSynchOpsTester"), m_ops(ops), m_locks(locks) {}

void ovSynchOpsTester::run() {
    if (!UT_CHECK(m_ops != nullptr))
        return;
    const std::unique_ptr<ovICriticalSection> first = m_ops->create();
    const std::unique_ptr<ovICriticalSection> second = m_ops->create();
    UT_CHECK(first != nullptr && second != nullptr);
    UT_CHECK(first != second);
    m_ops->sleep(0);
    m_ops->sleep(1);
    check_recursion();
    check_other_thread();
}

void ovSynchOpsTester::check_recursion() {
    auto probe = std::make_shared<LockProbe>();
    probe->lock = m_ops->create();
    if (!probe->lock)
        return;
    std::thread helper([probe] {
        probe->lock->enter();
        probe->lock->enter();
        probe->lock->leave();
        probe->lock->leave();
        probe->done = 1;
    });
    const bool holder_may_enter_again = wait_for(probe->done, kFinishLimit);
    UT_CHECK(holder_may_enter_again);
    finish(helper, holder_may_enter_again);
}

void ovSynchOpsTester::check_other_thread() {
    auto probe = std::make_shared<LockProbe>();
    probe->lock = m_ops->create();
    if (!probe->lock)
        return;
    probe->lock->enter();
    std::thread helper([probe] {
        probe->started = 1;
        probe->lock->enter();
        probe->entered = 1;
        probe->lock->leave();
        probe->done = 1;
    });
    if (m_locks) {
        // Counted from the helper's start, so a slow scheduler cannot hide an open lock.
        wait_for(probe->started, kFinishLimit);
        const bool other_thread_got_in = wait_for(probe->entered, kKeptOutFor);
        UT_CHECK(!other_thread_got_in);
        probe->lock->leave();
        const bool leave_lets_other_thread_in = wait_for(probe->done, kFinishLimit);
        UT_CHECK(leave_lets_other_thread_in);
        finish(helper, leave_lets_other_thread_in);
    } else {
        const bool other_thread_never_blocks = wait_for(probe->done, kFinishLimit);
        UT_CHECK(other_thread_never_blocks);
        probe->lock->leave();
        finish(helper, other_thread_never_blocks || wait_for(probe->done, kFinishLimit));
    }
}

namespace {

// Records where and how often it ran; run takes a little while, so that a join that
// does not wait shows.
class ProbeTask final : public ovIThreadTask {
public:
    explicit ProbeTask(std::shared_ptr<std::atomic<int>> destroyed)
        : m_destroyed(std::move(destroyed)) {}
    ~ProbeTask() override { *m_destroyed = 1; }
    void run() override {
        m_thread = std::this_thread::get_id();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        ++m_runs;
        m_finished = 1;
    }

    std::atomic<int> m_runs{0};
    std::atomic<int> m_finished{0};
    std::thread::id m_thread;

private:
    std::shared_ptr<std::atomic<int>> m_destroyed;
};

} // namespace

ovProcessThreadOpsTester::ovProcessThreadOpsTester(const ovIProcessThreadOperations* ops)
    : utUnitTest("ovProcessThreadOpsTester"), m_ops(ops) {}

void ovProcessThreadOpsTester::run() {
    if (!UT_CHECK(m_ops != nullptr))
        return;
    const int pid = m_ops->current_process_id();
    UT_CHECK(pid > 0);
    UT_CHECK(m_ops->current_process_id() == pid);

    auto destroyed = std::make_shared<std::atomic<int>>(0);
    auto task = std::make_shared<ProbeTask>(destroyed);
    std::weak_ptr<ProbeTask> watch = task;
    std::unique_ptr<ovINativeThread> thread = m_ops->create_joinable_thread(task);
    // The thread's own share must keep the task alive from here on.
    task.reset();
    if (!UT_CHECK(thread != nullptr))
        return;
    thread->join();
    std::shared_ptr<ProbeTask> after_join = watch.lock();
    UT_CHECK(after_join != nullptr);
    if (after_join) {
        UT_CHECK(after_join->m_finished == 1);
        UT_CHECK(after_join->m_runs == 1);
        UT_CHECK(after_join->m_thread != std::this_thread::get_id());
        after_join.reset();
    }
    thread->join(); // a second join returns at once
    thread.reset();
    UT_CHECK(*destroyed == 1);
}

ovProcessEnvironmentOpsTester::ovProcessEnvironmentOpsTester(ovIProcessEnvironmentOperations* ops)
    : utUnitTest("ovProcessEnvironmentOpsTester"), m_ops(ops) {}

void ovProcessEnvironmentOpsTester::run() {
    if (!UT_CHECK(m_ops != nullptr))
        return;
    const ovString name = ovString::literal("OVRA_CONFORMANCE_PROBE");
    const ovString value = ovString::literal("value 1");
    int status = 0;
    // "Grüße ✓" in UTF-8.
    const ovString unicode(ovSTRING_UTF8,
                           "Gr\xC3\xBC\xC3\x9F"
                           "e \xE2\x9C\x93",
                           status);
    const ovString empty(ovSTRING_EMPTY);

    UT_CHECK(m_ops->put(name, value));
    UT_CHECK(m_ops->get(name) == value);
    UT_CHECK(m_ops->put(name, unicode));
    UT_CHECK(m_ops->get(name) == unicode);
    UT_CHECK(m_ops->put(name, empty));
    UT_CHECK(m_ops->get(name) == empty);
    UT_CHECK(m_ops->get(ovString::literal("OVRA_CONFORMANCE_NEVER_SET_Q7Z")) == empty);

    const ovPathName cwd = m_ops->current_directory();
    const bool current_directory_is_absolute =
        !cwd.invalid() && !cwd.string().empty() && !cwd.relative_path();
    UT_CHECK(current_directory_is_absolute);
}

ovLibraryLoaderOpsTester::ovLibraryLoaderOpsTester(const ovILibraryLoaderOperations* ops,
                                                   const utString& library, const utString& symbol)
    : utUnitTest("ovLibraryLoaderOpsTester"), m_ops(ops), m_library(library), m_symbol(symbol) {}

void ovLibraryLoaderOpsTester::run() {
    if (!UT_CHECK(m_ops != nullptr))
        return;
    const utString extension = m_ops->shared_library_extension();
    const bool extension_has_dot = extension.length() > 1 && extension.c_str()[0] == '.';
    UT_CHECK(extension_has_dot);
    const ovPathName executable = m_ops->executable_path();
    const bool executable_path_is_absolute =
        !executable.invalid() && !executable.string().empty() && !executable.relative_path();
    UT_CHECK(executable_path_is_absolute);

    const std::string stem = m_library.is_null() ? "" : m_library.c_str();
    const std::string ext = extension.is_null() ? "" : extension.c_str();
    int status = 0;
    const ovString full(ovSTRING_UTF8, (stem + ext).c_str(), status);
    const ovString missing(ovSTRING_UTF8, (stem + "-missing" + ext).c_str(), status);

    void* handle = &handle;
    UT_CHECK(!m_ops->load_library_ov(ovPathName(missing), handle));
    UT_CHECK(handle == nullptr);

    handle = nullptr;
    if (UT_CHECK(m_ops->load_library(m_library, handle)) && UT_CHECK(handle != nullptr)) {
        void (*function)() = nullptr;
        UT_CHECK(m_ops->get_proc_address(handle, m_symbol, function) && function != nullptr);
        function = &sentinel;
        const utString absent(utSTRING_LIT, "ovra_conformance_no_such_symbol");
        UT_CHECK(!m_ops->get_proc_address(handle, absent, function));
        UT_CHECK(function == nullptr);
        UT_CHECK(m_ops->get_proc_address(handle, m_symbol, function) && function != nullptr);
        UT_CHECK(m_ops->free_library(handle));
    }

    handle = &handle;
    const utString doubled((stem + ext).c_str());
    UT_CHECK(!m_ops->load_library(doubled, handle));
    UT_CHECK(handle == nullptr);

    handle = nullptr;
    if (UT_CHECK(m_ops->load_library_ov(ovPathName(full), handle)) && UT_CHECK(handle != nullptr))
        UT_CHECK(m_ops->free_library(handle));
}
