# The target qvt_threaded_tests builds the programs labelled `threaded` and no others, qvt_optimised_tests those labelled
# `optimised`: what is run on the libraries as they are shipped, too, without sanitizers and with the pool's kept blocks.
add_custom_target(qvt_threaded_tests)
add_custom_target(qvt_optimised_tests)

# qvt_test(<name> [LAYER <layer>] SOURCES <file>... [LABELS <label>...] [LINK <library>...] [TIMEOUT <seconds>])
# Makes a GoogleTest program whose cases are tests of ctest. With LAYER it links that layer and those left of it; without, the
# shared libraries alone: never both, or each class would stand in the program twice.
# LABELS is `unit` when left out; a program labelled `torture` has a long form (tests/support/Torture.h). Labels in use: unit contract golden abi lint consumer slow threaded torture,
# and optimised, which threaded programs are without being asked.
function(qvt_test name)
    cmake_parse_arguments(PARSE_ARGV 1 test "" "LAYER;TIMEOUT" "SOURCES;LABELS;LINK")
    if(test_LAYER)
        set(tested qvt_layer_${test_LAYER})
    else()
        set(tested qvt_data)
    endif()
    if(NOT TARGET ${tested})
        message(STATUS "${name} waits for ${tested}")
        return()
    endif()
    if(NOT test_LABELS)
        set(test_LABELS unit)
    endif()
    if("threaded" IN_LIST test_LABELS)
        list(APPEND test_LABELS optimised)
    endif()
    if("torture" IN_LIST test_LABELS)
        set(test_TIMEOUT 7200)  # what the long form takes, on a slow machine
    elseif(NOT test_TIMEOUT)
        set(test_TIMEOUT 300)
    endif()
    add_executable(${name} ${test_SOURCES})
    qvt_warnings(${name})
    # Tests are compiled far more often than they run: optimizing them costs more than it gives.
    target_compile_options(${name} PRIVATE $<$<CONFIG:Debug>:-O0>)
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${tested} ${test_LINK} GTest::gmock GTest::gtest_main)
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin/tests")
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 60
        NO_PRETTY_VALUES
        TEST_PREFIX "${name}."
        TEST_LIST cases
        PROPERTIES TIMEOUT ${test_TIMEOUT})
    # Discovery takes a list of labels apart, so they are set on the cases it has found.
    set(labelled "${CMAKE_CURRENT_BINARY_DIR}/${name}_labels.cmake")
    file(WRITE "${labelled}" "if(cases)\n  set_tests_properties(\${cases} PROPERTIES LABELS \"${test_LABELS}\")\nendif()\nunset(cases)\n")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${labelled}")
    foreach(label threaded optimised)
        if(label IN_LIST test_LABELS)
            add_dependencies(qvt_${label}_tests ${name})
        endif()
    endforeach()
endfunction()
