// Windows: only the first byte of the wide system text survives.
#include "error_fixture.h"

#include <string>

using namespace ovtest;

namespace {
typedef ErrorTest ovErrorWin;
}

TEST_F(ovErrorWin, SystemTextKeepsOnlyItsFirstLetter) {
    const std::string suffix = "(reader:112)\n";
    EXPECT_EQ(ovError::default_handler("reader", 112, 2, ovERR_SYSTEM, 0, nullptr), ovERR_HANDLED);
    const std::string out = take_output();
    // Wine's text for a code may differ from Windows' or be missing altogether.
    if (out != kNoText + suffix) {
        ASSERT_EQ(out.size(), 1 + suffix.size()) << out;
        EXPECT_EQ(out.substr(1), suffix);
    }

    // Customer-defined codes have no system text.
    ovError::default_handler("reader", 112, 0x20000001, ovERR_SYSTEM, 0, nullptr);
    EXPECT_EQ(take_output(), kNoText + suffix);
}
