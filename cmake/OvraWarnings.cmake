include_guard(GLOBAL)

# ovra_set_warnings(<target>): strict warnings for one of the project's own targets, in
# the compiler's own terms (MSVC and clang-cl: /W4; GCC, MinGW and Clang: -Wall -Wextra).
# Third-party code is left alone. Errors only with OVRA_WARNINGS_AS_ERRORS, which is on
# when libovra is the top-level project.
function(ovra_set_warnings target)
    # Test targets are not created when OVRA_BUILD_TESTS is OFF.
    if(NOT TARGET ${target})
        return()
    endif()
    if(MSVC)
        set(flags /W4)
        set(werror /WX)
    else()
        set(flags -Wall -Wextra)
        set(werror -Werror)
    endif()
    if(OVRA_WARNINGS_AS_ERRORS)
        list(APPEND flags ${werror})
    endif()
    target_compile_options(${target} PRIVATE ${flags})
endfunction()
