// Test doubles of the system operations and the library loader: one that keeps every
// rule the conformance suites check, to prove the suites judge more than our own
// implementations, and one broken in a single rule, to prove each suite can fail.
#pragma once

#include "ovra/ovDynamicLibrary.h"
#include "ovra/ovSystemOperations.h"

#include "ut/utUnitTest.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <map>
#include <string>
#include <thread>

namespace ovtest {

// Runs a suite and prints its report when the outcome is not the one expected.
inline void expect_outcome(utUnitTest& suite, bool expect_pass) {
    const bool passed = suite.execute();
    if (passed != expect_pass)
        suite.report(stdout);
    EXPECT_EQ(passed, expect_pass) << suite.name();
    EXPECT_GT(suite.passed() + suite.failed(), 0) << suite.name();
}

class FixedSysInfo final : public ovISysInfoOperations {
public:
    ovString computer_name() const override { return ovString::literal("double-host"); }
};

// Broken: no name at all.
class NullNameSysInfo final : public ovISysInfoOperations {
public:
    ovString computer_name() const override { return ovString(); }
};

// A recursive spin lock: a lock built on nothing the library uses.
class SpinSection final : public ovICriticalSection {
public:
    void enter() override {
        const std::thread::id me = std::this_thread::get_id();
        if (m_owner.load() == me) {
            ++m_depth;
            return;
        }
        std::thread::id nobody;
        while (!m_owner.compare_exchange_weak(nobody, me)) {
            nobody = std::thread::id();
            std::this_thread::yield();
        }
        m_depth = 1;
    }
    void leave() override {
        if (--m_depth == 0)
            m_owner.store(std::thread::id());
    }

private:
    std::atomic<std::thread::id> m_owner{};
    int m_depth = 0;
};

class SpinSynch final : public ovISynchOperations {
public:
    std::unique_ptr<ovICriticalSection> create() const override {
        return std::make_unique<SpinSection>();
    }
    void sleep(unsigned long ms) const override {
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    }
};

// Broken: its locks keep nobody out.
class OpenDoorSynch final : public ovISynchOperations {
public:
    std::unique_ptr<ovICriticalSection> create() const override {
        return std::make_unique<ovDummyCriticalSection>();
    }
    void sleep(unsigned long) const override {}
};

// A standard-library thread that joins itself when destroyed.
class SelfJoiningThread final : public ovINativeThread {
public:
    explicit SelfJoiningThread(std::shared_ptr<ovIThreadTask> task)
        : ovINativeThread(std::move(task)), m_thread([task = m_task] { run_task(task.get()); }) {}
    void join() override {
        m_joined = 1;
        if (m_thread.joinable())
            m_thread.join();
    }
    ~SelfJoiningThread() override { join(); }

private:
    std::thread m_thread;
};

class SelfJoiningProcessThread final : public ovIProcessThreadOperations {
public:
    int current_process_id() const override { return 4242; }
    std::unique_ptr<ovINativeThread>
    create_joinable_thread(std::shared_ptr<ovIThreadTask> task) const override {
        return task ? std::make_unique<SelfJoiningThread>(std::move(task)) : nullptr;
    }
};

// Broken: runs the task on the caller's thread before handing back the "thread".
class InlineProcessThread final : public ovIProcessThreadOperations {
    class Done final : public ovINativeThread {
    public:
        using ovINativeThread::ovINativeThread;
        void join() override { m_joined = 1; }
    };

public:
    int current_process_id() const override { return 4242; }
    std::unique_ptr<ovINativeThread>
    create_joinable_thread(std::shared_ptr<ovIThreadTask> task) const override {
        ovINativeThread::run_task(task.get());
        return std::make_unique<Done>(std::move(task));
    }
};

// An environment held in a map, with a fixed current directory.
class MapEnvironment : public ovIProcessEnvironmentOperations {
public:
    bool put(const ovString& name, const ovString& value) override {
        if (name.invalid() || name.empty() || value.invalid())
            return false;
        m_vars[name.convert(ovSTRING_UTF8)] = value.convert(ovSTRING_UTF8);
        return true;
    }
    ovString get(const ovString& name) override {
        auto it = name.invalid() ? m_vars.end() : m_vars.find(name.convert(ovSTRING_UTF8));
        if (it == m_vars.end())
            return ovString(ovSTRING_EMPTY);
        int status = 0;
        return ovString(ovSTRING_UTF8, it->second.c_str(), status);
    }
    ovPathName current_directory() override { return ovPathName(ovString::literal("/virtual")); }

protected:
    std::map<std::string, std::string> m_vars;
};

// Broken: says yes to put and keeps nothing.
class ForgetfulEnvironment final : public MapEnvironment {
public:
    bool put(const ovString&, const ovString&) override { return true; }
};

// Modules held in a table: one module, /plugins/fake.fake, exporting fake_answer.
class TableLoader : public ovILibraryLoaderOperations {
public:
    static int fake_answer() { return 42; }

    ovStatus load_library_ov(const ovPathName& path, void*& handle) const override {
        const bool known = path.string() == ovString::literal("/plugins/fake.fake");
        handle = known ? const_cast<int*>(&m_module) : nullptr;
        return ovStatus(known ? 1 : 0);
    }
    ovStatus get_proc_address(void* const& handle, const utString& name,
                              void (*&function)()) const override {
        const bool known = handle == &m_module && name == "fake_answer";
        function = known ? reinterpret_cast<void (*)()>(&fake_answer) : nullptr;
        return ovStatus(known ? 1 : 0);
    }
    ovStatus free_library(void* handle) const override {
        return ovStatus(handle == &m_module ? 1 : 0);
    }
    utString shared_library_extension() const override { return utString(utSTRING_LIT, ".fake"); }
    ovPathName executable_path() const override {
        return ovPathName(ovString::literal("/plugins/app"));
    }

private:
    int m_module = 0;
};

// Broken: finds every symbol.
class FindsAnythingLoader final : public TableLoader {
public:
    ovStatus get_proc_address(void* const&, const utString&, void (*&function)()) const override {
        function = reinterpret_cast<void (*)()>(&fake_answer);
        return ovStatus(1);
    }
};

} // namespace ovtest
