include_guard(GLOBAL)

include("${CMAKE_CURRENT_LIST_DIR}/OvraWarnings.cmake")

# GoogleTest: the system package natively; for Windows it is built from Debian's sources,
# since no MinGW binary of it is packaged.
if(OVRA_BUILD_TESTS AND NOT TARGET GTest::gtest_main)
    if(CMAKE_CROSSCOMPILING)
        set(OVRA_GTEST_SOURCE_DIR "/usr/src/googletest" CACHE PATH "GoogleTest sources")
        if(NOT EXISTS "${OVRA_GTEST_SOURCE_DIR}/CMakeLists.txt")
            message(FATAL_ERROR "GoogleTest sources not found in ${OVRA_GTEST_SOURCE_DIR}"
                " (install googletest)")
        endif()
        set(BUILD_SHARED_LIBS OFF)
        set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
        # SYSTEM: its headers must not trip our -Werror.
        add_subdirectory("${OVRA_GTEST_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/_googletest"
            EXCLUDE_FROM_ALL SYSTEM)
        foreach(t IN ITEMS gtest gtest_main gmock gmock_main)
            if(TARGET ${t})
                target_compile_options(${t} PRIVATE -w)
                if(NOT TARGET GTest::${t})
                    add_library(GTest::${t} ALIAS ${t})
                endif()
            endif()
        endforeach()
    else()
        find_package(GTest REQUIRED)
    endif()
endif()

# ovra_add_test(NAME <name> SOURCES <files...> LIBS <targets...>)
# One executable and one CTest entry per executable (not one per test case): under Wine,
# starting the process is the expensive part.
function(ovra_add_test)
    cmake_parse_arguments(ARG "" "NAME" "SOURCES;LIBS" ${ARGN})
    if(NOT OVRA_BUILD_TESTS)
        return()
    endif()
    if(NOT ARG_NAME OR NOT ARG_SOURCES)
        message(FATAL_ERROR "ovra_add_test needs NAME and SOURCES")
    endif()
    add_executable(${ARG_NAME} ${ARG_SOURCES})
    target_link_libraries(${ARG_NAME} PRIVATE ${ARG_LIBS} GTest::gtest_main)
    ovra_set_warnings(${ARG_NAME})
    if(TARGET ovra_mingw_runtime)
        add_dependencies(${ARG_NAME} ovra_mingw_runtime)
    endif()
    add_test(NAME ${ARG_NAME} COMMAND ${ARG_NAME} --gtest_color=no
        WORKING_DIRECTORY "${CMAKE_RUNTIME_OUTPUT_DIRECTORY}")
    set_tests_properties(${ARG_NAME} PROPERTIES TIMEOUT 300)
endfunction()
