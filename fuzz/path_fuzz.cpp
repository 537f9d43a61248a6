// Path normalisation is a fixed point: a path name built from the text of a
// path name is that same path name. Text that does not decode gives an invalid
// path, and no parent is longer than its path.
#include "ovra/ovPathName.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    int status = -1;
    const ovString text(ovSTRING_UTF8, bytes.c_str(), status);
    const ovPathName path(text);
    if (status != 0) {
        if (!path.invalid())
            std::abort(); // text that does not decode gives an invalid path
        return 0;
    }
    const ovPathName again(path.string());
    if (!(again.string() == path.string()))
        std::abort();
    // Parents never grow.
    const ovPathName parent = path.dirname();
    if (parent.string().length() > path.string().length() && !path.string().empty())
        std::abort();
    return 0;
}
