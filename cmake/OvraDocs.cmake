include_guard(GLOBAL)

# `docs`: the API reference of include/ovra/ by Doxygen, into <build>/docs/html. Only when
# doxygen is installed. With OVRA_DOCS_WARNINGS_AS_ERRORS (as CI builds it) any warning,
# an undocumented public name included, fails the target.
find_program(OVRA_DOXYGEN doxygen)
option(OVRA_DOCS_WARNINGS_AS_ERRORS "Fail the docs target on any Doxygen warning" OFF)
if(NOT OVRA_DOXYGEN)
    return()
endif()
if(OVRA_DOCS_WARNINGS_AS_ERRORS)
    set(OVRA_DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
else()
    set(OVRA_DOXYGEN_WARN_AS_ERROR NO)
endif()
configure_file("${PROJECT_SOURCE_DIR}/docs/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
add_custom_target(docs
    COMMAND "${OVRA_DOXYGEN}" "${PROJECT_BINARY_DIR}/Doxyfile"
    WORKING_DIRECTORY "${PROJECT_BINARY_DIR}"
    COMMENT "API reference: ${PROJECT_BINARY_DIR}/docs/html/index.html"
    VERBATIM)
