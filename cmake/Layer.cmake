# What every target of the project is compiled with.
function(nuo_set_compile_options target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    target_compile_options(${target} PRIVATE
        -fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=
        -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual
        $<$<BOOL:${NUO_WARNINGS_AS_ERRORS}>:-Werror>)
    if(NUO_SANITIZE)
        target_compile_options(${target} PRIVATE
            -fsanitize=${NUO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=${NUO_SANITIZE})
    endif()
    target_compile_definitions(${target} PRIVATE
        NUO_ASSERTIONS=$<BOOL:${NUO_ASSERTIONS}>
        $<$<NOT:$<BOOL:${BUILD_SHARED_LIBS}>>:NUO_STATIC>)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
endfunction()

# nuo_add_layer(<name> SOURCES ... INCLUDE ... LINK ... [FOLDER <folder>]): one layer, or a group of
# one, as a static library of its own, so that tests reach its internals and a call into a higher
# layer does not link. What lies in its folder, the current one unless another is named, includes
# headers of its own and of the layers that it links, and of no other.
function(nuo_add_layer name)
    cmake_parse_arguments(LAYER "" "FOLDER" "SOURCES;INCLUDE;LINK" ${ARGN})
    add_library(${name} STATIC ${LAYER_SOURCES})
    target_include_directories(${name} PUBLIC ${LAYER_INCLUDE})
    target_link_libraries(${name} PUBLIC ${LAYER_LINK})
    nuo_set_compile_options(${name})
    if(NOT LAYER_FOLDER)
        set(LAYER_FOLDER ${CMAKE_CURRENT_SOURCE_DIR})
    endif()
    list(JOIN LAYER_LINK "," links)
    set_property(GLOBAL APPEND PROPERTY NUO_LAYERS ${name})
    set_property(GLOBAL APPEND PROPERTY NUO_LAYER_RECORDS "${name}|${LAYER_FOLDER}|${links}")
endfunction()
