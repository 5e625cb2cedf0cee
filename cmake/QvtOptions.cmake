# What is common to every target: language, visibility, warnings, sanitizers, places of the output.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

option(QVT_WARNINGS_AS_ERRORS "Warnings in our own code stop the build" ON)
option(QVT_TESTS "Build the tests" ON)
option(QVT_BENCH "Build the benchmarks" OFF)
option(QVT_FUZZ "Build the fuzzers (clang only)" OFF)
option(QVT_COVERAGE "Count the lines that run" OFF)
set(QVT_SANITIZE "" CACHE STRING "Sanitizers, comma separated: address,undefined or thread")

# g++ has sized deallocation without being asked.
add_compile_options($<$<CXX_COMPILER_ID:Clang>:-fsized-deallocation>)

add_compile_definitions($<$<NOT:$<CONFIG:Release>>:_GLIBCXX_ASSERTIONS>)

# A list given with semicolons means the same as one given with commas.
string(REPLACE ";" "," qvtSanitizers "${QVT_SANITIZE}")
if(qvtSanitizers)
    add_compile_options(-fsanitize=${qvtSanitizers} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_compile_options("$<$<CXX_COMPILER_ID:Clang>:-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/clang.ignorelist>")
    add_link_options(-fsanitize=${qvtSanitizers})
else()
    # The sanitizers leave their own symbols open until load time; nothing else may.
    add_link_options(LINKER:-z,defs)
endif()

if(QVT_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(QVT_COVERAGE)
    add_compile_options(--coverage -fprofile-update=atomic)
    add_link_options(--coverage)
endif()

function(qvt_warnings target)
    target_compile_options(${target} PRIVATE
        -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override
        $<$<BOOL:${QVT_WARNINGS_AS_ERRORS}>:-Werror>)
endfunction()
