include_guard(GLOBAL)

# Puts the MinGW runtime DLLs next to the executables so they start under Wine or on a
# plain Windows machine. libstdc++ stays a DLL: one C++ runtime shared by all our DLLs.
set(OVRA_MINGW_RUNTIME_DLLS)
foreach(dll IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(
        COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=${dll}
        OUTPUT_VARIABLE found OUTPUT_STRIP_TRAILING_WHITESPACE
        RESULT_VARIABLE rc)
    # The compiler echoes the bare name back when it does not know the file.
    if(NOT rc EQUAL 0 OR NOT IS_ABSOLUTE "${found}" OR NOT EXISTS "${found}")
        file(GLOB found
            "/usr/x86_64-w64-mingw32/lib/${dll}"
            "/usr/lib/gcc/x86_64-w64-mingw32/*-posix/${dll}")
        if(found)
            list(SORT found ORDER DESCENDING)
            list(GET found 0 found)
        endif()
    endif()
    if(NOT found OR NOT EXISTS "${found}")
        message(FATAL_ERROR "MinGW runtime ${dll} not found (install mingw-w64)")
    endif()
    get_filename_component(found "${found}" REALPATH)
    list(APPEND OVRA_MINGW_RUNTIME_DLLS "${found}")
endforeach()
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
