include_guard(GLOBAL)

# ovra_platform_sources(<outvar> <dir>): the *.cpp files of <dir> that belong to this
# platform. Files ending in _win.cpp build only for Windows, _posix.cpp only elsewhere;
# test files may put the marker before the suffix (wide_win_test.cpp). Files in a win/
# or posix/ subfolder build on that platform only.
function(ovra_platform_sources outvar dir)
    if(NOT IS_ABSOLUTE "${dir}")
        set(dir "${CMAKE_CURRENT_SOURCE_DIR}/${dir}")
    endif()
    file(GLOB candidates CONFIGURE_DEPENDS "${dir}/*.cpp")
    # A family may keep its platform files in win/ and posix/ instead of by suffix.
    if(WIN32)
        file(GLOB platform_candidates CONFIGURE_DEPENDS "${dir}/win/*.cpp")
    else()
        file(GLOB platform_candidates CONFIGURE_DEPENDS "${dir}/posix/*.cpp")
    endif()
    list(APPEND candidates ${platform_candidates})
    list(SORT candidates)
    set(kept)
    foreach(src IN LISTS candidates)
        if(WIN32 AND src MATCHES "_posix(_test)?\\.cpp$")
            continue()
        elseif(NOT WIN32 AND src MATCHES "_win(_test)?\\.cpp$")
            continue()
        endif()
        list(APPEND kept "${src}")
    endforeach()
    set(${outvar} ${kept} PARENT_SCOPE)
endfunction()
