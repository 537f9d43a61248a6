// The conformance suites against this platform's implementations (as the chooser hands
// them out), against test doubles, and against doubles broken in one rule each, which
// every suite must report. The suites of locks and threads run with the threads tests.
#include "ovra/ovFrustrumChooser.h"
#include "ovra/ovSystemOpsTesters.h"

#include "plugin_path.h"
#include "system_ops_doubles.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using ovtest::expect_outcome;

const ovFrustrumChooser chooser(nullptr);

} // namespace

TEST(SysInfoOpsTester, PassesRealAndDoubleFailsBrokenAndNull) {
    const ovtest::FixedSysInfo fixed;
    const ovtest::NullNameSysInfo broken;
    const struct {
        const char* what;
        const ovISysInfoOperations* ops;
        bool passes;
    } cases[] = {{"platform", chooser.system_info_operations(), true},
                 {"double", &fixed, true},
                 {"broken", &broken, false},
                 {"null", nullptr, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ovSysInfoOpsTester suite(c.ops);
        expect_outcome(suite, c.passes);
    }
}

TEST(ProcessEnvironmentOpsTester, PassesRealAndDoubleFailsBrokenAndNull) {
    ovtest::MapEnvironment map;
    ovtest::ForgetfulEnvironment broken;
    const struct {
        const char* what;
        ovIProcessEnvironmentOperations* ops;
        bool passes;
    } cases[] = {{"platform", chooser.process_environment_operations().get(), true},
                 {"double", &map, true},
                 {"broken", &broken, false},
                 {"null", nullptr, false}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ovProcessEnvironmentOpsTester suite(c.ops);
        expect_outcome(suite, c.passes);
    }
}

TEST(LibraryLoaderOpsTester, PassesRealAndDoubleFailsBrokenAndNull) {
    const ovtest::TableLoader table;
    const ovtest::FindsAnythingLoader broken;
    const std::string plugin = ovtest::plugin_stem();
    const struct {
        const char* what;
        const ovILibraryLoaderOperations* ops;
        const char* library;
        const char* symbol;
        bool passes;
    } cases[] = {
        {"platform", chooser.library_loader_operations().get(), plugin.c_str(),
         "ovra_test_plugin_answer", true},
        {"double", &table, "/plugins/fake", "fake_answer", true},
        {"broken", &broken, "/plugins/fake", "fake_answer", false},
        {"null", nullptr, "/plugins/fake", "fake_answer", false},
        // A symbol the module does not export is a failure of the suite's own input.
        {"wrong symbol", &table, "/plugins/fake", "other", false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        ovLibraryLoaderOpsTester suite(c.ops, c.library, c.symbol);
        expect_outcome(suite, c.passes);
    }
}

TEST(SuiteReport, NamesEachFailedCheck) {
    const ovtest::NullNameSysInfo broken;
    ovSysInfoOpsTester suite(&broken);
    EXPECT_FALSE(suite.execute());
    ASSERT_GE(suite.failure_count(), 1u);
    EXPECT_NE(std::string(suite.failure(0).expression).find("computer_name"), std::string::npos)
        << suite.failure(0).expression;
}
