// POSIX: whole strerror texts and no message box.
#include "error_fixture.h"

#include <cstring>
#include <string>

using namespace ovtest;

namespace {
typedef ErrorTest ovErrorPosix;
}

TEST_F(ovErrorPosix, SystemNumbersGiveTheWholeSystemText) {
    for (int32_t number : {2, 13, 99999}) {
        SCOPED_TRACE(number);
        const std::string expected = std::string(std::strerror(number)) + "(reader:112)\n";
        EXPECT_EQ(ovError::default_handler("reader", 112, number, ovERR_SYSTEM, 0, nullptr),
                  ovERR_HANDLED);
        EXPECT_EQ(take_output(), expected);
    }
}

TEST_F(ovErrorPosix, BoxBehaviourWritesToTheStream) {
    ovra_internal::set_error_box_for_tests(nullptr); // the platform's: none
    ovError::set_default_handler_behaviour(ovERR_SHOW_MESSAGE_BOX);
    EXPECT_EQ(ovError::error("reader", 112, 2, ovERR_NUMBER, 0), ovERR_HANDLED);
    EXPECT_EQ(take_output(), "Application error number 2(reader:112)\n");
    EXPECT_EQ(the_boxes, "");
}
