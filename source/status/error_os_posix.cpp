// POSIX: strerror's text, kept whole; there is no message box.
#include "status/error_os.h"

#include <cstring>

namespace {

// strerror_r comes in two forms: XSI returns 0 and fills the buffer, GNU
// returns the text (which may live elsewhere). Overloading picks the right one.
[[maybe_unused]] const char* strerror_result(int rc, const char* buffer) {
    return rc == 0 ? buffer : nullptr;
}
[[maybe_unused]] const char* strerror_result(const char* text, const char*) {
    return text;
}

} // namespace

bool ovra_internal::system_error_text(int32_t number, std::string& text) {
    char buffer[256] = {};
    const char* found = strerror_result(strerror_r(number, buffer, sizeof buffer), buffer);
    if (!found || !*found)
        return false;
    text = found;
    return true;
}

ovra_internal::ErrorBoxFunc ovra_internal::platform_error_box() {
    return nullptr;
}
