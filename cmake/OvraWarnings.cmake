include_guard(GLOBAL)

# Strict warnings for the project's own targets only; third-party code is left alone.
function(ovra_set_warnings target)
    # Test targets are not created when OVRA_BUILD_TESTS is OFF.
    if(NOT TARGET ${target})
        return()
    endif()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()
