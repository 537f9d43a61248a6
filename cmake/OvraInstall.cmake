include_guard(GLOBAL)

# cmake --install: the libraries (DLLs to bin/, import libraries and archives to lib/),
# every public header under one include root (ovra/, ut/, co/, ub/), the CMake package
# (find_package(ovra) gives ovra::ovra, ovra::basics, ovra::shelves, ovra::glyphs) and
# ovra.pc for pkg-config. On Windows the MinGW runtime DLLs go to bin/ too, so the
# installed bin/ runs as it is.
include(CMakePackageConfigHelpers)

set(OVRA_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/ovra"
    CACHE STRING "Where the CMake package files go, relative to the prefix")
mark_as_advanced(OVRA_INSTALL_CMAKEDIR)

get_property(companions GLOBAL PROPERTY OVRA_COMPANIONS)
install(TARGETS ovra ${companions}
    EXPORT ovraTargets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}"
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/" "${OVRA_GENERATED_INCLUDE_DIR}/"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
    FILES_MATCHING PATTERN "*.h")
get_property(companion_includes GLOBAL PROPERTY OVRA_COMPANION_INCLUDE_DIRS)
foreach(dir IN LISTS companion_includes)
    install(DIRECTORY "${dir}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        FILES_MATCHING PATTERN "*.h")
endforeach()

if(OVRA_MINGW_RUNTIME_DLLS)
    install(FILES ${OVRA_MINGW_RUNTIME_DLLS} DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

install(EXPORT ovraTargets
    NAMESPACE ovra::
    FILE ovraTargets.cmake
    DESTINATION "${OVRA_INSTALL_CMAKEDIR}")
configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/ovraConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/ovraConfig.cmake"
    INSTALL_DESTINATION "${OVRA_INSTALL_CMAKEDIR}")
# 0.x releases promise no compatibility between minor versions either, but a package
# that refused every other 0.x would only push users to skip the version check.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ovraConfigVersion.cmake"
    VERSION ${PROJECT_VERSION}
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/ovraConfig.cmake"
    "${PROJECT_BINARY_DIR}/ovraConfigVersion.cmake"
    "${CMAKE_CURRENT_LIST_DIR}/OvraRuntimeDlls.cmake"
    DESTINATION "${OVRA_INSTALL_CMAKEDIR}")

# ovra.pc finds its prefix from its own place (${pcfiledir}), so it stays right when the
# prefix is chosen at install time (cmake --install --prefix) or the tree is moved.
set(pc_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH OVRA_PC_PREFIX "/root/${pc_dir}" "/root")
string(REGEX REPLACE "/$" "" OVRA_PC_PREFIX "${OVRA_PC_PREFIX}")
foreach(kind IN ITEMS LIBDIR INCLUDEDIR)
    if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}}")
        set(OVRA_PC_${kind} "${CMAKE_INSTALL_${kind}}")
    else()
        set(OVRA_PC_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
    endif()
endforeach()
set(OVRA_PC_CFLAGS)
if(OVRA_LIBRARY_TYPE STREQUAL "STATIC")
    set(OVRA_PC_CFLAGS " -DOVRA_STATIC -DUT_STATIC -DCO_STATIC -DUB_STATIC")
endif()
configure_file("${CMAKE_CURRENT_LIST_DIR}/ovra.pc.in" "${PROJECT_BINARY_DIR}/ovra.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/ovra.pc" DESTINATION "${pc_dir}")
