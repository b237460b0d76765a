# Installs the build into a folder of its own, then builds and runs the consumer project against
# that copy: once through the CMake package, once through pkg-config. The examples that were installed
# are built as a project of their own.
set(prefix ${WORK}/installed)
file(REMOVE_RECURSE ${WORK})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${prefix}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

execute_process(
    COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -S ${CONSUMER} -B ${WORK}/build -DCMAKE_PREFIX_PATH=${prefix}
            -DCMAKE_CXX_COMPILER=${COMPILER}
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/build COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/build/consumer COMMAND_ERROR_IS_FATAL ANY)

set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBRARY_FOLDER}/pkgconfig)
execute_process(COMMAND pkg-config --cflags --libs NuoZRFx
    OUTPUT_VARIABLE flags OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags)
execute_process(
    COMMAND ${COMPILER} ${CONSUMER}/consumer.cpp ${flags}
            -Wl,-rpath,${prefix}/${LIBRARY_FOLDER} -o ${WORK}/consumer_by_pkg_config
    COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${WORK}/consumer_by_pkg_config COMMAND_ERROR_IS_FATAL ANY)

execute_process(
    COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -S ${prefix}/${DOC_FOLDER}/examples -B ${WORK}/examples
            -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${COMPILER}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_COMMAND} --build ${WORK}/examples
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)

# The installed package for Python finds the installed library.
if(PYTHON)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E env PYTHONPATH=${prefix}/${PYTHON_FOLDER} PYTHONDONTWRITEBYTECODE=1
                ${PYTHON} -c "import zrfx; zrfx.create('${WORK}/installed.zrfx').abandon()"
        COMMAND_ERROR_IS_FATAL ANY)
endif()
