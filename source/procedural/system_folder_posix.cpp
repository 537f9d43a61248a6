#include "ovra/ovNarrowHelpers.h"

#include "ut/utString.h"

#include <cstdlib>
#include <string>

namespace {

struct Folder {
    ovCSIDL folder;
    const char* xdg;        // variable that overrides, or null
    const char* under_home; // path below $HOME
};

const Folder kFolders[] = {
    {ovCSIDL_PROFILE, nullptr, ""},
    {ovCSIDL_PERSONAL, nullptr, "/Documents"},
    {ovCSIDL_DESKTOP, nullptr, "/Desktop"},
    {ovCSIDL_DESKTOPDIRECTORY, nullptr, "/Desktop"},
    {ovCSIDL_MYMUSIC, nullptr, "/Music"},
    {ovCSIDL_MYVIDEO, nullptr, "/Videos"},
    {ovCSIDL_MYPICTURES, nullptr, "/Pictures"},
    {ovCSIDL_TEMPLATES, nullptr, "/Templates"},
    {ovCSIDL_APPDATA, "XDG_CONFIG_HOME", "/.config"},
    {ovCSIDL_LOCAL_APPDATA, "XDG_DATA_HOME", "/.local/share"},
    {ovCSIDL_INTERNET_CACHE, "XDG_CACHE_HOME", "/.cache"},
    {ovCSIDL_FONTS, nullptr, "/.local/share/fonts"},
};

} // namespace

OV_API utString ov_get_system_folder(ovCSIDL folder) {
    const char* home = std::getenv("HOME");
    if (!home || !*home)
        return utString("");
    for (const Folder& f : kFolders) {
        if (f.folder != folder)
            continue;
        const char* xdg = f.xdg ? std::getenv(f.xdg) : nullptr;
        if (xdg && xdg[0] == '/')
            return utString(xdg);
        return utString((std::string(home) + f.under_home).c_str());
    }
    return utString("");
}
