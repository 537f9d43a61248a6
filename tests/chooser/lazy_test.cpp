// Each default is built on its own accessor's first call and no sooner. A program of its
// own, since any earlier test could have asked for anything.
#include "ovra/ovFrustrumChooser.h"

#include "operations/chooser_internal.h"

#include <gtest/gtest.h>

using namespace ovra_internal;

TEST(FrustrumChooserLazy, AskingForOneBuildsNoOther) {
    ASSERT_EQ(defaults_built_for_tests(), 0u) << "nothing is built before it is asked for";
    const ovFrustrumChooser chooser(nullptr);
    unsigned expected = 0;
    const struct {
        const char* what;
        ChooserDefault bit;
        void (*ask)(const ovFrustrumChooser&);
    } steps[] = {
        {"synch", CHOSEN_SYNCH, [](const ovFrustrumChooser& c) { c.synch_operations(); }},
        {"system info", CHOSEN_SYSTEM_INFO,
         [](const ovFrustrumChooser& c) { c.system_info_operations(); }},
        {"process and thread", CHOSEN_PROCESS_THREAD,
         [](const ovFrustrumChooser& c) { c.process_thread_operations(); }},
        {"library loader", CHOSEN_LIBRARY_LOADER,
         [](const ovFrustrumChooser& c) { c.library_loader_operations(); }},
        {"environment", CHOSEN_PROCESS_ENVIRONMENT,
         [](const ovFrustrumChooser& c) { c.process_environment_operations(); }},
        {"files", CHOSEN_FILES, [](const ovFrustrumChooser& c) { c.file_operations(); }},
    };
    for (const auto& s : steps) {
        SCOPED_TRACE(s.what);
        s.ask(chooser);
        expected |= s.bit;
        EXPECT_EQ(defaults_built_for_tests(), expected);
        s.ask(ovFrustrumChooser(nullptr)); // asking again builds nothing more
        EXPECT_EQ(defaults_built_for_tests(), expected);
    }
}
