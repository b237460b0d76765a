# cmake -DLIBRARY=<file> -DNM=<tool> -P CheckExports.cmake: fails when the shared library exports
# anything but the classes of its public namespace.
execute_process(COMMAND ${NM} -DC --defined-only ${LIBRARY}
    OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," symbols "${symbols}")
string(REPLACE "\n" ";" symbols "${symbols}")
set(leaked "")
foreach(symbol ${symbols})
    string(REGEX REPLACE "^[0-9a-f]* +[A-Za-z] " "" name "${symbol}")
    if(name AND NOT name MATCHES "^(vtable for |typeinfo for |typeinfo name for )?nuo::")
        list(APPEND leaked "${symbol}")
    endif()
endforeach()
if(leaked)
    list(JOIN leaked "\n" text)
    message(FATAL_ERROR "The library exports what is not public:\n${text}")
endif()
