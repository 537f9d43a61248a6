// Fixture of the ovError tests: output goes to a string, boxes to a recorder
// (under Wine a real box would wait for a click), and the process-wide state
// is put back after every test.
#pragma once

#include "ovra/ovStatus.h"

#include "status/error_os.h"

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <sstream>
#include <string>

namespace ovtest {

const char kNoText[] = "(ovError::default_handler) failed to find message text";

// Each box that would have been shown, as "text|caption|style;".
inline std::string the_boxes;

inline void record_box(const char* text, const char* caption, unsigned int style) {
    the_boxes += std::string(text) + "|" + caption + "|" + std::to_string(style) + ";";
}

class ErrorTest : public testing::Test {
protected:
    void SetUp() override {
        const char* text = ovError::get_error_text();
        saved_text_ = text ? std::make_unique<std::string>(text) : nullptr;
        the_boxes.clear();
        ovra_internal::set_error_box_for_tests(&record_box);
        ovError::set_default_handler_stream(out_);
    }
    void TearDown() override {
        ovError::set_handler(&ovError::default_handler, nullptr);
        ovError::set_default_handler_behaviour(ovERR_SHOW_STREAM);
        ovError::set_default_handler_stream(std::cerr);
        ovError::set_error_text(saved_text_ ? saved_text_->c_str() : nullptr);
        ovra_internal::set_error_box_for_tests(nullptr);
    }
    // What the default handler wrote since the last call.
    std::string take_output() {
        const std::string s = out_.str();
        out_.str("");
        return s;
    }

    std::ostringstream out_;
    std::unique_ptr<std::string> saved_text_;
};

} // namespace ovtest
