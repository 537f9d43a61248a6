#include "ovra/ovNarrowHelpers.h"

#include "ub/ubGlyphs.h"
#include "ut/utString.h"

#include "common/win32.h"

OV_API utString ov_get_system_folder(ovCSIDL folder) {
    if (static_cast<int>(folder) < 0)
        return utString("");
    char path[MAX_PATH] = {};
    if (SHGetFolderPathU(nullptr, static_cast<int>(folder), nullptr, 0, path) < 0)
        return utString("");
    return utString(path);
}
