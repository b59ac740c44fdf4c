# What TARVEK_FROM_SCRATCH does. A compiler spends most of its time here on the headers that all sources include and
# on what they make of them. Read once, and shared by files that are compiled together, they cost a whole sanitized
# build two fifths less (939 s to 542 s on two processors). Where a cache keeps what has been compiled it costs time,
# since a header is never precompiled to the same bytes twice, and one change compiles many files.
if(TARVEK_FROM_SCRATCH)
  file(CONFIGURE OUTPUT precompiled_headers.cpp CONTENT "// Compiled as all layers are.\n")
  add_library(tarvek_precompiled_headers STATIC ${CMAKE_CURRENT_BINARY_DIR}/precompiled_headers.cpp)
  target_link_libraries(tarvek_precompiled_headers PRIVATE tarvek_options)
  target_precompile_headers(tarvek_precompiled_headers PRIVATE
    <algorithm> <array> <atomic> <chrono> <cmath> <cstdint> <cstdio> <cstring> <filesystem> <fstream> <functional>
    <map> <memory> <mutex> <numeric> <optional> <span> <sstream> <stdexcept> <string> <string_view> <thread>
    <utility> <vector>)
endif()

# tarvek_compile_together(<target> [<names>...])
#
# Its files define no name twice, not even in unnamed namespaces, so that they may be compiled together. The names
# are exceptions, which several files have each for something of its own: there the preprocessor tells them apart.
function(tarvek_compile_together target)
  if(TARVEK_FROM_SCRATCH)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 12)
    if(ARGN)
      set(before "#define TARVEK_JOINED(name, file) name##_##file\n#define TARVEK_OF(name, file) TARVEK_JOINED(name, file)\n")
      set(after "")
      foreach(name IN LISTS ARGN)
        string(APPEND before "#define ${name} TARVEK_OF(${name}, TARVEK_FILE)\n")
        string(APPEND after "#undef ${name}\n")
      endforeach()
      set_target_properties(${target} PROPERTIES UNITY_BUILD_UNIQUE_ID TARVEK_FILE
        UNITY_BUILD_CODE_BEFORE_INCLUDE "${before}" UNITY_BUILD_CODE_AFTER_INCLUDE "${after}")
    endif()
    # To the compiler an unnamed namespace of an included file looks like a header's.
    target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  endif()
endfunction()

# The sources of the current folder that parse a command line. In each the compiler makes the whole parser anew:
# optimised it takes as long as all other files of a program, with a sanitizer's checks half a minute, and a program
# parses one line.
function(tarvek_parses_command_line)
  set(options -O0)
  if(TARVEK_SANITIZE)
    list(APPEND options -fno-sanitize=undefined)
  endif()
  set_source_files_properties(${ARGN} PROPERTIES
    COMPILE_OPTIONS "${options}" SKIP_PRECOMPILE_HEADERS ON SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# tarvek_layer(<target> [TOGETHER [OWN <names>...]] [DEPENDS <targets>...])
#
# One layer of the house: a static library of all sources below src/, with its
# public headers below include/. A layer that is not named in DEPENDS cannot be
# included, since its include root is not on the path.
# TOGETHER, OWN: see tarvek_compile_together.
function(tarvek_layer name)
  cmake_parse_arguments(ARG "TOGETHER" "" "OWN;DEPENDS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS src/*.cpp)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC include PRIVATE src)
    target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE tarvek_options)
    if(TARVEK_FROM_SCRATCH)
      target_precompile_headers(${name} REUSE_FROM tarvek_precompiled_headers)
    endif()
    if(ARG_TOGETHER)
      tarvek_compile_together(${name} ${ARG_OWN})
    endif()
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE include)
    target_link_libraries(${name} INTERFACE ${ARG_DEPENDS})
  endif()
endfunction()

# What all test programs are compiled with. The code under test is optimised, its tests are compiled fast; the
# checks for undefined behaviour, which double the compiler's work, are for the code under test alone.
function(tarvek_test_options name)
  if(TARVEK_SANITIZE STREQUAL "address")
    target_compile_options(${name} PRIVATE -O0 -fno-sanitize=undefined)
  else()
    target_compile_options(${name} PRIVATE -O1)
  endif()
  target_link_libraries(${name} PRIVATE tarvek_options GTest::gmock GTest::gtest GTest::gtest_main)
endfunction()

# tarvek_tests(<name> [TOGETHER] [NATIVE] [DATA] [ALONE] [ONE_THREAD] [BELLS]
#              [PATIENT <tests>...] [RACELESS <tests>...] [SOURCES <files>...] [DEPENDS <targets>...])
#
# One test program of these files, or of all *.cpp in this folder. Each test is its own ctest entry; with
# TARVEK_TESTS_BY_PROGRAM, and where programs are emulated or sanitized, each program, since it takes longer to
# start than most tests take to run.
# TOGETHER: see tarvek_compile_together.
# NATIVE marks a program that has nothing to say under emulation: it starts programs of ours. A cross build leaves it
# out.
# DATA marks one that looks at data alone: it has nothing to say under emulation and to sanitizers.
# ALONE marks one with an amplifier's audio threads, which would take those of another their processor: they run
# one at a time, except in sanitized builds, whose threads have no real-time priority.
# ONE_THREAD marks one in which no second thread runs: the thread sanitizer has nothing to see there, and its
# build leaves it out.
# BELLS lets the audio path's helpers wait for a job, see tests/support/bells.
# PATIENT names tests that take minutes where they are emulated or sanitized, and run no code there that shorter
# ones do not: they measure, or wait long.
# RACELESS names those that take minutes under the thread sanitizer and give threads nothing to share that shorter
# ones do not.
function(tarvek_tests name)
  cmake_parse_arguments(ARG "TOGETHER;NATIVE;DATA;ALONE;ONE_THREAD;BELLS" "" "PATIENT;RACELESS;SOURCES;DEPENDS" ${ARGN})
  set(sources ${ARG_SOURCES})
  if(NOT sources)
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  endif()
  if(NOT sources)
    return()
  endif()
  if(ARG_BELLS)
    list(APPEND sources ${PROJECT_SOURCE_DIR}/tests/support/bells/BellsForEveryTest.cpp)
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS})
  tarvek_test_options(${name})
  if(TARVEK_FROM_SCRATCH)
    target_precompile_headers(${name} REUSE_FROM test_precompiled_headers)
  endif()
  if(ARG_TOGETHER)
    tarvek_compile_together(${name})
  endif()
  if((ARG_NATIVE AND CMAKE_CROSSCOMPILING) OR
      (ARG_DATA AND (CMAKE_CROSSCOMPILING OR TARVEK_SANITIZE)) OR
      (ARG_ONE_THREAD AND TARVEK_SANITIZE STREQUAL "thread"))
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL TRUE)
    return()
  endif()
  set(properties)
  if(ARG_ALONE OR ARG_PATIENT)
    # They take the longest, and are started first.
    set(properties COST 100)
  endif()
  if(ARG_ALONE AND NOT TARVEK_SANITIZE)
    list(APPEND properties RESOURCE_LOCK audio_processor)
  endif()
  set(isSlow FALSE)
  if(CMAKE_CROSSCOMPILING OR TARVEK_SANITIZE)
    set(isSlow TRUE)
  endif()
  if(isSlow OR TARVEK_TESTS_BY_PROGRAM)
    set(left_out)
    if(isSlow)
      list(APPEND left_out ${ARG_PATIENT})
    endif()
    if(TARVEK_SANITIZE STREQUAL "thread")
      list(APPEND left_out ${ARG_RACELESS})
    endif()
    set(filter)
    if(left_out)
      list(JOIN left_out ":" patterns)
      set(filter --gtest_filter=-${patterns})
    endif()
    add_test(NAME ${name} COMMAND ${name} ${filter})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600 ${properties})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300 ${properties})
  endif()
endfunction()
