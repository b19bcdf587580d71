# Copyright The Kavro STB browser authors
# SPDX-License-Identifier: Apache-2.0

# A target may include what it links, and nothing else: no target has the source tree in its search path.

# kavro_provide(TARGET PATH...)
#
# Has TARGET, and all that link it, find these folders or headers of the source tree, under the same names as there. The
# links that stand in the search path are relative, so that a tree may be moved.
function(kavro_provide TARGET)
    set(root ${CMAKE_BINARY_DIR}/include/${TARGET})
    foreach(path IN LISTS ARGN)
        get_filename_component(folder ${root}/${path} DIRECTORY)
        file(MAKE_DIRECTORY ${folder})
        file(RELATIVE_PATH source ${folder} ${CMAKE_SOURCE_DIR}/${path})
        file(CREATE_LINK ${source} ${root}/${path} SYMBOLIC)
    endforeach()
    get_target_property(type ${TARGET} TYPE)
    if(type STREQUAL INTERFACE_LIBRARY)
        target_include_directories(${TARGET} INTERFACE ${root})
    else()
        target_include_directories(${TARGET} PUBLIC ${root})
    endif()
endfunction()

# kavro_add_layer(TARGET SOURCE... [PROVIDES PATH...] [LIBRARIES LIBRARY...])
#
# One of the plugin's folders, as objects. Who links them sees the folder's headers, and those of LIBRARIES; a program or
# library names each layer whose objects it needs. Without PROVIDES it is the whole folder that is seen.
function(kavro_add_layer TARGET)
    cmake_parse_arguments(PARSE_ARGV 1 ARG "" "" "PROVIDES;LIBRARIES")
    add_library(${TARGET} OBJECT ${ARG_UNPARSED_ARGUMENTS})
    set_target_properties(${TARGET} PROPERTIES
        POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    if(NOT ARG_PROVIDES)
        file(RELATIVE_PATH ARG_PROVIDES ${CMAKE_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    endif()
    kavro_provide(${TARGET} ${ARG_PROVIDES})
    # The sources keep to what Qt 4.7 and Qt 5.15 both have, some of which Qt 5 advises against.
    target_compile_definitions(${TARGET} PRIVATE QT_NO_DEPRECATED_WARNINGS)
    target_link_libraries(${TARGET} PUBLIC ${ARG_LIBRARIES} PRIVATE kavro_warnings)
endfunction()
