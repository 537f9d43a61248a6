#include "error_fixture.h"

#include <iostream>
#include <sstream>
#include <string>

using namespace ovtest;

namespace {

// The arguments of the last call, as "where|line|number|type|style".
std::string the_call;
void* the_user_data;

ovErrorResponse recording_handler(const char* where, int32_t line, int32_t number, ovErrorType type,
                                  int32_t style, void* user_data) {
    the_call = std::string(where) + "|" + std::to_string(line) + "|" + std::to_string(number) +
               "|" + std::to_string(type) + "|" + std::to_string(style);
    the_user_data = user_data;
    return ovERR_RETRY;
}

typedef ErrorTest ovErrorTest;

} // namespace

TEST_F(ovErrorTest, HandlerIsReplaceableAndMayBeNone) {
    int data = 0;
    EXPECT_EQ(ovError::set_handler(&recording_handler, &data), &ovError::default_handler);
    EXPECT_EQ(ovError::error("loader", 9, 42, ovERR_NUMBER, 0x30), ovERR_RETRY);
    EXPECT_EQ(the_call, "loader|9|42|2|48");
    EXPECT_EQ(the_user_data, &data);

    // Returns the handler before, never the user data before.
    EXPECT_EQ(ovError::set_handler(nullptr, &data), &recording_handler);
    ovError::set_default_handler_behaviour(ovERR_SHOW_MESSAGE_BOX);
    EXPECT_EQ(ovError::error("loader", 9, 42, ovERR_NUMBER, 0), ovERR_HANDLED);
    EXPECT_EQ(take_output(), "");
    EXPECT_EQ(the_boxes, "");
    EXPECT_EQ(ovError::set_handler(&ovError::default_handler, nullptr), nullptr);
}

TEST_F(ovErrorTest, DefaultHandlerBuildsTheMessageThenTheLocation) {
    const struct {
        const char* where;
        int32_t line, number;
        int32_t type;
        const char* text; // error text set beforehand
        std::string expected;
    } cases[] = {
        {"reader", 112, 2, ovERR_NUMBER, nullptr, "Application error number 2(reader:112)"},
        {"reader", 112, -7, ovERR_NUMBER, nullptr, "Application error number -7(reader:112)"},
        {"x", 1, 0, 3, nullptr, "Unknown error type(x:1)"},
        {"x", 1, 0, -1, nullptr, "Unknown error type(x:1)"},
        {"x", -5, 0, ovERR_USER_TEXT, "disk full", "disk full(x:-5)"},
        {"x", 1, 5, ovERR_USER_TEXT, "disk full", std::string(kNoText) + "(x:1)"},
        {"x", 1, 0, ovERR_USER_TEXT, nullptr, "(x:1)"},
        {nullptr, 7, 1, ovERR_NUMBER, nullptr, "Application error number 1(:7)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        ovError::set_error_text(c.text);
        EXPECT_EQ(ovError::default_handler(c.where, c.line, c.number,
                                           static_cast<ovErrorType>(c.type), 0, nullptr),
                  ovERR_HANDLED);
        EXPECT_EQ(take_output(), c.expected + "\n");
    }
}

TEST_F(ovErrorTest, ErrorTextIsACopyAndEmptyClearsIt) {
    char text[] = "first";
    ovError::set_error_text(text);
    text[0] = 'F';
    const char* first = ovError::get_error_text();
    EXPECT_STREQ(first, "first");
    for (const char* clearing : {"", static_cast<const char*>(nullptr)}) {
        ovError::set_error_text("second");
        EXPECT_STREQ(ovError::get_error_text(), "second");
        ovError::set_error_text(clearing);
        EXPECT_EQ(ovError::get_error_text(), nullptr);
    }
    EXPECT_STREQ(first, "first"); // earlier texts are never released
}

TEST_F(ovErrorTest, StreamIsStdCerrUntilReplaced) {
    ovError::set_default_handler_stream(std::cerr);
    std::ostringstream captured;
    std::streambuf* const cerr_buf = std::cerr.rdbuf(captured.rdbuf());
    const ovErrorResponse r = ovError::error("reader", 112, 2, ovERR_NUMBER, 0);
    std::cerr.rdbuf(cerr_buf);
    EXPECT_EQ(r, ovERR_HANDLED);
    EXPECT_EQ(captured.str(), "Application error number 2(reader:112)\n");
}

TEST_F(ovErrorTest, OnlyBehaviourOneUsesTheBox) {
    const std::string message = "Application error number 2(reader:112)";
    const struct {
        int32_t behaviour, style;
        std::string boxes, output;
    } cases[] = {
        {ovERR_SHOW_MESSAGE_BOX, 0, message + "|Error|8208;", ""}, // 0x2010
        {ovERR_SHOW_MESSAGE_BOX, 0x30, message + "|Error|48;", ""},
        {ovERR_SHOW_STREAM, 0x30, "", message + "\n"},
        {2, 0, "", message + "\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "behaviour " << c.behaviour << " style " << c.style);
        the_boxes.clear();
        ovError::set_default_handler_behaviour(static_cast<ovErrorBehaviour>(c.behaviour));
        EXPECT_EQ(ovError::error("reader", 112, 2, ovERR_NUMBER, c.style), ovERR_HANDLED);
        EXPECT_EQ(the_boxes, c.boxes);
        EXPECT_EQ(take_output(), c.output);
    }
}
