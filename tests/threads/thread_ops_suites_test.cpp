// The conformance suites of locks and threads against this platform's implementations,
// ovNoSynchOperations, test doubles, and doubles broken in one rule each.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOpsTesters.h"

#include "../operations/system_ops_doubles.h"

#include <gtest/gtest.h>

using ovtest::expect_outcome;

TEST(SynchOpsTester, PassesRealNoSynchAndDoubleFailsBrokenAndNull) {
    const ovNoSynchOperations none;
    const ovtest::SpinSynch spin;
    const ovtest::OpenDoorSynch broken;
    const struct {
        const char* what;
        const ovISynchOperations* ops;
        bool locks;
        bool passes;
    } cases[] = {{"platform", ovFrustrumChooser(nullptr).synch_operations(), true, true},
                 {"no synch", &none, false, true},
                 {"double", &spin, true, true},
                 {"broken", &broken, true, false},
                 {"null", nullptr, true, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ovSynchOpsTester suite(c.ops, c.locks);
        expect_outcome(suite, c.passes);
    }
}

TEST(ProcessThreadOpsTester, PassesRealAndDoubleFailsBrokenAndNull) {
    const ovtest::SelfJoiningProcessThread joining;
    const ovtest::InlineProcessThread broken;
    const struct {
        const char* what;
        const ovIProcessThreadOperations* ops;
        bool passes;
    } cases[] = {{"platform", ovFrustrumChooser(nullptr).process_thread_operations(), true},
                 {"double", &joining, true},
                 {"broken", &broken, false},
                 {"null", nullptr, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ovProcessThreadOpsTester suite(c.ops);
        expect_outcome(suite, c.passes);
    }
}
