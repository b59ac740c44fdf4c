# tarvek_layer(<target> [DEPENDS <targets>...])
#
# One layer of the house: a static library of all sources below src/, with its
# public headers below include/. A layer that is not named in DEPENDS cannot be
# included, since its include root is not on the path.
function(tarvek_layer name)
  cmake_parse_arguments(ARG "" "" "DEPENDS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS src/*.cpp)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC include PRIVATE src)
    target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE tarvek_options)
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE include)
    target_link_libraries(${name} INTERFACE ${ARG_DEPENDS})
  endif()
endfunction()

# What all test programs are compiled with. The code under test is optimised, its tests are compiled fast.
function(tarvek_test_options name)
  target_compile_options(${name} PRIVATE -O1)
  target_link_libraries(${name} PRIVATE tarvek_options GTest::gmock GTest::gtest GTest::gtest_main)
endfunction()

# tarvek_tests(<name> [NATIVE] [ONE_THREAD] [SOURCES <files>...] [DEPENDS <targets>...])
#
# One test program of these files, or of all *.cpp in this folder, each test its own ctest entry (the
# program, where it is emulated).
# NATIVE labels tests that cannot run under emulation, such as those that start
# programs of ours. ONE_THREAD marks a program in which no second thread runs: the
# thread sanitizer has nothing to see there, and its build leaves it out.
function(tarvek_tests name)
  cmake_parse_arguments(ARG "NATIVE;ONE_THREAD" "" "SOURCES;DEPENDS" ${ARGN})
  set(sources ${ARG_SOURCES})
  if(NOT sources)
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
  endif()
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS})
  tarvek_test_options(${name})
  if(TARVEK_TEST_PCH)
    target_precompile_headers(${name} REUSE_FROM test_precompiled_headers)
  endif()
  if(ARG_ONE_THREAD AND TARVEK_SANITIZE STREQUAL "thread")
    set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL TRUE)
    return()
  endif()
  set(labels)
  if(ARG_NATIVE)
    set(labels LABELS native)
  endif()
  if(CMAKE_CROSSCOMPILING)
    # An emulated program takes longer to start than most tests take to run.
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 1200 ${labels})
  else()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300 ${labels})
  endif()
endfunction()
