// System operations beyond what their conformance suites check: refused input changes
// nothing, sleeping without synchronisation returns, the directory follows chdir.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOperations.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

ovIProcessEnvironmentOperations& environment() {
    return *ovFrustrumChooser(nullptr).process_environment_operations();
}

int status_ignored = 0;

} // namespace

TEST(ProcessEnvironment, RefusedInputChangesNothing) {
    ovIProcessEnvironmentOperations& env = environment();
    const ovString kept = ovString::literal("OVRA_TEST_KEPT");
    ASSERT_TRUE(env.put(kept, ovString::literal("before")));
    const struct {
        const char* what;
        ovString name;
        ovString value;
    } cases[] = {
        {"null name", ovString(), ovString::literal("x")},
        {"empty name", ovString(ovSTRING_EMPTY), ovString::literal("x")},
        // Built in place: a copy of a failed string is no longer failed.
        {"failed name", ovString(ovSTRING_UTF8, "\xC3", status_ignored), ovString::literal("x")},
        {"name with =", ovString::literal("OVRA_TEST_KEPT=after"), ovString::literal("x")},
        {"null value", kept, ovString()},
        {"failed value", kept, ovString(ovSTRING_UTF8, "\xC3", status_ignored)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_FALSE(env.put(c.name, c.value));
        EXPECT_EQ(env.get(kept), ovString::literal("before"));
        const ovString got = env.get(c.name);
        EXPECT_FALSE(got.invalid());
        if (c.name != kept) {
            EXPECT_TRUE(got.empty());
        }
    }
    env.put(kept, ovString(ovSTRING_EMPTY));
}

TEST(ProcessEnvironment, EmptyAndLongValuesRoundTrip) {
    ovIProcessEnvironmentOperations& env = environment();
    const ovString name = ovString::literal("OVRA_TEST_VALUE");
    ASSERT_TRUE(env.put(name, ovString::literal("x")));
    for (const ovString& value :
         {ovString(ovSTRING_EMPTY), ovString::literal(std::string(20000, 'v').c_str())}) {
        SCOPED_TRACE(value.length());
        ASSERT_TRUE(env.put(name, value));
        const ovString got = env.get(name);
        EXPECT_FALSE(got.invalid());
        EXPECT_EQ(got, value);
    }
    env.put(name, ovString(ovSTRING_EMPTY));
}

TEST(NoSynchOperations, SleepReturnsAtOnceAndLocksNeverBlock) {
    const ovNoSynchOperations none;
    none.sleep(ULONG_MAX); // a real sleep would hang the test here
    std::unique_ptr<ovICriticalSection> lock = none.create();
    ASSERT_NE(lock, nullptr);
    lock->enter();
    lock->enter();
    lock->leave();
    lock->enter(); // unbalanced on purpose: nothing is counted
}
