include_guard(GLOBAL)

# The version header, ovra/ovVersion.h, generated into the build tree and installed with
# the other headers.
set(OVRA_GENERATED_INCLUDE_DIR "${PROJECT_BINARY_DIR}/include")
configure_file("${CMAKE_CURRENT_LIST_DIR}/ovVersion.h.in"
    "${OVRA_GENERATED_INCLUDE_DIR}/ovra/ovVersion.h" @ONLY)

# ovra_add_version_resource(<target> <description>): a VERSIONINFO resource in a Windows
# DLL or program, so Explorer and installers see its version.
function(ovra_add_version_resource target description)
    if(NOT WIN32)
        return()
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "STATIC_LIBRARY")
        return()
    endif()
    get_target_property(output_name ${target} OUTPUT_NAME)
    if(NOT output_name)
        set(output_name ${target})
    endif()
    if(type STREQUAL "EXECUTABLE")
        set(OVRA_RC_FILE_NAME "${output_name}.exe")
        set(OVRA_RC_FILE_TYPE "VFT_APP")
    else()
        set(OVRA_RC_FILE_NAME "lib${output_name}.dll")
        set(OVRA_RC_FILE_TYPE "VFT_DLL")
    endif()
    set(OVRA_RC_DESCRIPTION "${description}")
    set(OVRA_RC_INTERNAL_NAME "${output_name}")
    set(rc "${CMAKE_CURRENT_BINARY_DIR}/${target}_version.rc")
    configure_file("${PROJECT_SOURCE_DIR}/cmake/version.rc.in" "${rc}" @ONLY)
    target_sources(${target} PRIVATE "${rc}")
endfunction()
