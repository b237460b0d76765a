# The target docs: the reference of the public headers as HTML, in docs/html of the build folder. A
# warning fails it. Where Doxygen is missing there is no such target.
find_package(Doxygen QUIET)
if(NOT DOXYGEN_FOUND)
    message(STATUS "Doxygen was not found: there is no target docs")
    return()
endif()

set(DOXYGEN_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/docs)
set(DOXYGEN_USE_MDFILE_AS_MAINPAGE ${PROJECT_SOURCE_DIR}/docs/guide.md)
set(DOXYGEN_STRIP_FROM_PATH ${PROJECT_SOURCE_DIR})
set(DOXYGEN_STRIP_FROM_INC_PATH
    ${PROJECT_SOURCE_DIR}/NuoZRFx/include ${PROJECT_SOURCE_DIR}/foundation/include)
set(DOXYGEN_EXCLUDE_SYMBOLS "*Private" "unstruct" "nvf" "internal_*")
set(DOXYGEN_PREDEFINED "NUO_API=")
set(DOXYGEN_MACRO_EXPANSION YES)
set(DOXYGEN_EXTRACT_ALL YES)
set(DOXYGEN_WARN_AS_ERROR FAIL_ON_WARNINGS)
set(DOXYGEN_QUIET YES)
set(DOXYGEN_HAVE_DOT NO)
set(DOXYGEN_TOC_INCLUDE_HEADINGS 3)
doxygen_add_docs(docs
    ${PROJECT_SOURCE_DIR}/NuoZRFx/include ${PROJECT_SOURCE_DIR}/foundation/include
    ${PROJECT_SOURCE_DIR}/docs
    COMMENT "Reference of the public headers")
