// Windows: FormatMessageW's text and MessageBoxU.
#include "status/error_os.h"

#include "common/win32.h"
#include "ub/ubGlyphs.h"

namespace {

void show_box(const char* text, const char* caption, unsigned int style) {
    MessageBoxU(nullptr, text, caption, style);
}

} // namespace

bool ovra_internal::system_error_text(int32_t number, std::string& text) {
    wchar_t* buffer = nullptr;
    const DWORD n =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM, nullptr,
                       static_cast<DWORD>(number), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                       reinterpret_cast<wchar_t*>(&buffer), 0, nullptr);
    if (n == 0 || !buffer)
        return false;
    // The wide text is read as narrow on purpose, so it ends at the first zero
    // byte: "The system cannot..." gives "T". Callers have always seen this.
    // The wide terminator guarantees a zero byte inside the buffer.
    text = reinterpret_cast<const char*>(buffer);
    LocalFree(buffer);
    return true;
}

ovra_internal::ErrorBoxFunc ovra_internal::platform_error_box() {
    return &show_box;
}
