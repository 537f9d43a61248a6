include_guard(GLOBAL)

# Deployment helpers for Windows programs that use libovra. Installed with the CMake
# package, so an application gets them from find_package(ovra) as well as from
# add_subdirectory. Elsewhere they do nothing.

# ovra_mingw_runtime_dlls(<outvar>): full paths of the MinGW runtime DLLs that programs of
# this compiler need (libstdc++, libgcc_s, winpthread); empty for other compilers.
function(ovra_mingw_runtime_dlls outvar)
    if(NOT MINGW)
        set(${outvar} "" PARENT_SCOPE)
        return()
    endif()
    if(DEFINED OVRA_MINGW_RUNTIME_DLLS_FOUND)
        set(${outvar} ${OVRA_MINGW_RUNTIME_DLLS_FOUND} PARENT_SCOPE)
        return()
    endif()
    set(dlls)
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
        list(APPEND dlls "${found}")
    endforeach()
    set(OVRA_MINGW_RUNTIME_DLLS_FOUND ${dlls} CACHE INTERNAL "MinGW runtime DLLs")
    set(${outvar} ${dlls} PARENT_SCOPE)
endfunction()

# ovra_copy_runtime_dlls(<target>): after each build of <target>, copies every DLL it
# needs beside it: libovra's, the companions', and the MinGW runtime's. Without them
# Windows refuses to start the program (under Wine: exit code 53 and no message).
function(ovra_copy_runtime_dlls target)
    if(NOT WIN32)
        return()
    endif()
    ovra_mingw_runtime_dlls(runtime)
    set(dlls "$<TARGET_RUNTIME_DLLS:${target}>")
    if(runtime)
        list(APPEND dlls ${runtime})
        set(verb copy_if_different)
    else()
        # A static build with another compiler may need no DLL at all.
        set(verb "$<IF:$<BOOL:${dlls}>,copy_if_different,true>")
    endif()
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND "${CMAKE_COMMAND}" -E ${verb} ${dlls} "$<TARGET_FILE_DIR:${target}>"
        COMMAND_EXPAND_LISTS
        VERBATIM)
endfunction()
