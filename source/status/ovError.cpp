#include "ovra/ovStatus.h"

#include "status/error_os.h"

#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace {

const char kNoText[] = "(ovError::default_handler) failed to find message text";
const unsigned int kDefaultBoxStyle = 0x2010; // task-modal, stop icon

struct ErrorState {
    ovErrorHandler handler = &ovError::default_handler;
    void* user_data = nullptr;
    const char* text = nullptr;
    // Every text ever set: none is released, so a pointer from
    // get_error_text stays valid, even on another thread mid-report.
    std::vector<std::unique_ptr<char[]>> texts;
    ovErrorBehaviour behaviour = ovERR_SHOW_STREAM;
    std::ostream* stream = &std::cerr;
    ovra_internal::ErrorBoxFunc box = ovra_internal::platform_error_box();
};

// Built on first use (thread-safe), and never destroyed, so errors reported
// from other objects' destructors at process exit still find it.
ErrorState& state() {
    static ErrorState* const the_state = new ErrorState;
    return *the_state;
}

std::string message_for(int32_t number, ovErrorType type) {
    std::string text;
    switch (type) {
    case ovERR_SYSTEM:
        if (!ovra_internal::system_error_text(number, text))
            text = kNoText;
        return text;
    case ovERR_USER_TEXT:
        if (number != 0)
            return kNoText;
        return state().text ? state().text : "";
    case ovERR_NUMBER:
        return "Application error number " + std::to_string(number);
    default:
        return "Unknown error type";
    }
}

} // namespace

ovErrorHandler ovError::set_handler(ovErrorHandler handler, void* user_data) {
    ErrorState& s = state();
    const ovErrorHandler before = s.handler;
    s.handler = handler;
    s.user_data = user_data;
    return before;
}

ovErrorResponse ovError::error(const char* where, int32_t line, int32_t number, ovErrorType type,
                               int32_t style) {
    const ErrorState& s = state();
    if (!s.handler)
        return ovERR_HANDLED;
    return s.handler(where, line, number, type, style, s.user_data);
}

void ovError::set_error_text(const char* text) {
    ErrorState& s = state();
    if (!text || !*text) {
        s.text = nullptr;
        return;
    }
    const size_t n = std::strlen(text) + 1;
    std::unique_ptr<char[]> copy(new char[n]);
    std::memcpy(copy.get(), text, n);
    s.texts.reserve(s.texts.size() + 1); // so push_back cannot throw after the copy
    s.text = copy.get();
    s.texts.push_back(std::move(copy));
}

const char* ovError::get_error_text() {
    return state().text;
}

ovErrorResponse ovError::default_handler(const char* where, int32_t line, int32_t number,
                                         ovErrorType type, int32_t style, void*) {
    // Never fails outward: whatever goes wrong, the caller still gets its answer.
    try {
        const std::string message = message_for(number, type) + "(" + (where ? where : "") + ":" +
                                    std::to_string(line) + ")";
        const ErrorState& s = state();
        if (s.behaviour == ovERR_SHOW_MESSAGE_BOX && s.box) {
            const unsigned int box_style =
                style ? static_cast<unsigned int>(style) : kDefaultBoxStyle;
            s.box(message.c_str(), "Error", box_style);
        } else {
            *s.stream << message << std::endl;
        }
    } catch (...) {
    }
    return ovERR_HANDLED;
}

void ovError::set_default_handler_behaviour(ovErrorBehaviour behaviour) {
    state().behaviour = behaviour;
}

void ovError::set_default_handler_stream(std::ostream& stream) {
    state().stream = &stream;
}

ovra_internal::ErrorBoxFunc ovra_internal::set_error_box_for_tests(ErrorBoxFunc box) {
    ErrorState& s = state();
    const ErrorBoxFunc before = s.box;
    s.box = box ? box : platform_error_box();
    return before;
}
