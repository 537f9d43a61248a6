include_guard(GLOBAL)

# Windows programs built here run under Wine through a generated wrapper, which CTest and
# add_custom_command pick up as CMAKE_CROSSCOMPILING_EMULATOR. Include this before any
# executable target is created: targets copy the emulator when they are made.
find_program(OVRA_WINE wine)
find_program(OVRA_WINESERVER wineserver)
if(NOT OVRA_WINE OR NOT OVRA_WINESERVER)
    message(WARNING "wine not found: Windows tests cannot run here (install wine and wine64)")
    return()
endif()

set(OVRA_WINEPREFIX "${PROJECT_BINARY_DIR}/wineprefix")
configure_file("${CMAKE_CURRENT_LIST_DIR}/wine-run.sh.in" "${PROJECT_BINARY_DIR}/wine-run.sh"
    @ONLY
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
                     GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR "${PROJECT_BINARY_DIR}/wine-run.sh")
