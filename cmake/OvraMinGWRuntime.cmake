include_guard(GLOBAL)

# Puts the MinGW runtime DLLs next to libovra's own executables so they start under Wine
# or on a plain Windows machine. libstdc++ stays a DLL: one C++ runtime shared by all our
# DLLs.
include("${CMAKE_CURRENT_LIST_DIR}/OvraRuntimeDlls.cmake")
ovra_mingw_runtime_dlls(OVRA_MINGW_RUNTIME_DLLS)
message(STATUS "MinGW runtime DLLs: ${OVRA_MINGW_RUNTIME_DLLS}")

set(copied)
foreach(src IN LISTS OVRA_MINGW_RUNTIME_DLLS)
    get_filename_component(name "${src}" NAME)
    set(dst "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${name}")
    add_custom_command(OUTPUT "${dst}"
        COMMAND ${CMAKE_COMMAND} -E copy_if_different "${src}" "${dst}"
        DEPENDS "${src}"
        COMMENT "Copying ${name}"
        VERBATIM)
    list(APPEND copied "${dst}")
endforeach()
add_custom_target(ovra_mingw_runtime ALL DEPENDS ${copied})
