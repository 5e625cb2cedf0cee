# Layers are static targets; the shared libraries are made of them whole.

set(QVT_LAYER_ORDER "${PROJECT_SOURCE_DIR}/cmake/layers.txt")
set_property(DIRECTORY "${PROJECT_SOURCE_DIR}" APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${QVT_LAYER_ORDER}")

file(STRINGS "${QVT_LAYER_ORDER}" qvtRows REGEX "^[a-z]")
foreach(qvtRow IN LISTS qvtRows)
    separate_arguments(qvtRow)
    set(qvtLeft)
    foreach(qvtName IN LISTS qvtRow)
        set(QVT_LEFT_OF_${qvtName} ${qvtLeft})
        list(APPEND qvtLeft ${qvtName})
        list(APPEND QVT_LAYERS ${qvtName})
    endforeach()
endforeach()
list(REMOVE_DUPLICATES QVT_LAYERS)

# Layers that know no records.
set(QVT_STORE_LAYERS pool stores overlay filestore)

# A folder that is not there yet is left out.
function(qvt_folder path)
    if(EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${path}/CMakeLists.txt")
        add_subdirectory(${path})
    endif()
endfunction()

# qvt_layer(<name> SOURCES <file>... [USES <layer>...] [LINK <library>...])
# A data layer that uses core links the shared library of core, as every host does.
function(qvt_layer name)
    cmake_parse_arguments(PARSE_ARGV 1 layer "" "" "SOURCES;USES;LINK")
    set(target qvt_layer_${name})
    add_library(${target} STATIC ${layer_SOURCES})
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)
    target_include_directories(${target} PUBLIC "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/src")
    qvt_warnings(${target})
    foreach(used IN LISTS layer_USES)
        if(NOT used IN_LIST QVT_LEFT_OF_${name})
            message(FATAL_ERROR "The layer ${name} may not use ${used}: see ${QVT_LAYER_ORDER}")
        endif()
        if(used STREQUAL "core" AND NOT name STREQUAL "stores")
            target_link_libraries(${target} PUBLIC qvt_core)
        else()
            target_link_libraries(${target} PUBLIC qvt_layer_${used})
        endif()
    endforeach()
    target_link_libraries(${target} PUBLIC qvt_hashing Threads::Threads ${layer_LINK})
    if(name STREQUAL "core")
        target_link_libraries(${target} PRIVATE EXPAT::EXPAT)
    elseif(NOT name IN_LIST QVT_STORE_LAYERS)
        target_link_libraries(${target} PUBLIC qvt_core TBB::tbb)
    endif()
endfunction()

# qvt_library(<name> LAYERS <layer>... [LINK <library>...])
# Makes libqvt_<name>-3_0.so once each of its layers exists.
function(qvt_library name)
    cmake_parse_arguments(PARSE_ARGV 1 library "" "" "LAYERS;LINK")
    list(TRANSFORM library_LAYERS PREPEND qvt_layer_)
    # Users before the used: a layer named twice on the link line would be taken in whole twice.
    list(REVERSE library_LAYERS)
    foreach(layer IN LISTS library_LAYERS)
        if(NOT TARGET ${layer})
            message(STATUS "qvt_${name} waits for ${layer}")
            return()
        endif()
    endforeach()
    set(target qvt_${name})
    set(exports "${PROJECT_SOURCE_DIR}/cmake/abi/${name}.map")
    add_library(${target} SHARED "${PROJECT_SOURCE_DIR}/cmake/whole.cpp")
    add_library(qvt::${name} ALIAS ${target})
    list(JOIN library_LAYERS "," whole)
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME "qvt_${name}-${PROJECT_VERSION_MAJOR}_${PROJECT_VERSION_MINOR}"
        EXPORT_NAME ${name}
        LINK_LIBRARY_OVERRIDE "WHOLE_ARCHIVE,${whole}"
        LINK_DEPENDS "${exports}")
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
    target_link_libraries(${target} PUBLIC ${library_LINK} PRIVATE ${library_LAYERS})
    # A library calls its own functions, the exported ones too: it is not for others to put theirs in their place.
    target_link_options(${target} PRIVATE "LINKER:--version-script=${exports},-Bsymbolic-functions")
endfunction()
