# What every target shares: warnings, sanitizers, and the way a folder becomes a library or a test.

add_library(mailvane_options INTERFACE)
target_compile_options(mailvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Woverloaded-virtual
    -Wcast-align -Wunused -Wnull-dereference -Wimplicit-fallthrough -Wextra-semi
    -Wno-missing-field-initializers)  # named initializers leave the rest at its defaults
# g++ 12 sees overlapping copies in optimised string concatenation where there are none (PR 105651).
target_compile_options(mailvane_options INTERFACE
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<NOT:$<CONFIG:Debug>>>:-Wno-restrict>)
if(MAILVANE_WERROR)
    target_compile_options(mailvane_options INTERFACE -Werror)
endif()
if(MAILVANE_SANITIZE)
    target_compile_options(mailvane_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(mailvane_options INTERFACE -fsanitize=address,undefined)
endif()
if(MAILVANE_FUZZ)
    target_compile_options(mailvane_options INTERFACE
        -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(mailvane_options INTERFACE -fsanitize=address,undefined)
    add_custom_target(fuzz_targets)
endif()

# mailvane_library(NAME FOLDER DEPENDENCIES...): every .cpp in FOLDER and below makes one static
# library; headers are included by their path below src/.
function(mailvane_library name folder)
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    if(NOT sources)
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE mailvane_options ${ARGN})
        return()
    endif()
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC mailvane_options ${ARGN})
endfunction()

# mailvane_test(NAME FOLDER DEPENDENCIES...): one test executable for a folder of tests/.
function(mailvane_test name folder)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    if(NOT sources)
        return()
    endif()
    add_executable(${name} ${sources})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE MAILVANE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE ${ARGN} GTest::gtest_main GTest::gmock)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endfunction()

# mailvane_fuzz(NAME SOURCE DEPENDENCIES...): a fuzz target of tests/fuzz. With MAILVANE_FUZZ it is a
# libFuzzer program, fuzz_NAME; otherwise a replay of its corpus in the suite.
function(mailvane_fuzz name source)
    if(MAILVANE_FUZZ)
        set(target fuzz_${name})
        add_executable(${target} fuzz/${source})
        target_link_options(${target} PRIVATE -fsanitize=fuzzer)
        add_dependencies(fuzz_targets ${target})
    else()
        set(target fuzz_${name}_replay)
        add_executable(${target} fuzz/${source} fuzz/Replay.cpp)
        add_test(NAME fuzz_${name} COMMAND ${target} ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/corpus/${name})
        set_tests_properties(fuzz_${name} PROPERTIES TIMEOUT 300)
    endif()
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${target} PRIVATE MAILVANE_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    target_link_libraries(${target} PRIVATE ${ARGN})
endfunction()
