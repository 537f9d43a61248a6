// Internal: what the default error handler needs from the platform, and the
// seam that lets tests see the message box's arguments without a window.
#pragma once

#include <cstdint>
#include <string>

namespace ovra_internal {

// Shows `text` in a modal box with the given caption and MessageBox style.
typedef void (*ErrorBoxFunc)(const char* text, const char* caption, unsigned int style);

// The operating system's text for error `number`; false when it has none.
bool system_error_text(int32_t number, std::string& text);

// The platform's box: MessageBoxU on Windows; null on POSIX, where the
// default handler writes to its stream instead.
ErrorBoxFunc platform_error_box();

// For tests only, not exported (tests link the library's archive): installs
// `box` in place of the platform's (null puts the platform's back) and returns
// the one before.
ErrorBoxFunc set_error_box_for_tests(ErrorBoxFunc box);

} // namespace ovra_internal
