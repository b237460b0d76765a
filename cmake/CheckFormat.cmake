# cmake -DROOT=<source folder> -DCLANG_FORMAT=<program> -P CheckFormat.cmake: fails when clang-format
# would change a source file.
file(GLOB_RECURSE files ${ROOT}/*.h ${ROOT}/*.cpp)
list(FILTER files EXCLUDE REGEX "^${ROOT}/build/")
execute_process(COMMAND ${CLANG_FORMAT} --dry-run -Werror ${files} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "Format these files with clang-format -i")
endif()
