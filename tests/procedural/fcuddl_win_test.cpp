#include "ovra/ovFileUtils.h"

#include <gtest/gtest.h>

#include <string>

// cmd.exe expands %VAR% even inside double quotes and cannot quote a quote:
// such paths are refused before anything runs.
TEST(fcuddl, RefusesWhatCmdCannotQuote) {
    for (const std::string path : {"a%PATH%b", "a\"&echo x\"", "%"}) {
        SCOPED_TRACE(path);
        int ierr = -5;
        const int n = static_cast<int>(path.size());
        fcuddl(path.data(), n, &n, &ierr);
        EXPECT_EQ(ierr, -1);
    }
}
