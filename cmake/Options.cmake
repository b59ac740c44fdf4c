# Build options and the compile flags that every target shares.

option(TARVEK_TESTS "Build the test suites" ON)
option(TARVEK_TESTS_BY_PROGRAM "One ctest entry for each test program, not for each test" OFF)
option(TARVEK_FROM_SCRATCH "Compile for a machine that keeps nothing: precompiled headers, files together" OFF)
option(TARVEK_FUZZ "Build the fuzzers instead of the test suites (needs clang)" OFF)
set(TARVEK_SANITIZE "" CACHE STRING "Sanitizers to build with: address, thread or empty")

add_library(tarvek_options INTERFACE)
target_compile_options(tarvek_options INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)

if(TARVEK_SANITIZE STREQUAL "address")
  set(TARVEK_SANITIZE_FLAGS -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer
    # What the address sanitizer sees as well, and a quarter of the compiler's work.
    -fno-sanitize=null,vptr,object-size)
elseif(TARVEK_SANITIZE STREQUAL "thread")
  set(TARVEK_SANITIZE_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT TARVEK_SANITIZE STREQUAL "")
  message(FATAL_ERROR "TARVEK_SANITIZE is '${TARVEK_SANITIZE}'; use address, thread or leave it empty")
endif()
if(TARVEK_SANITIZE_FLAGS)
  # Function multiversioning goes through ifunc resolvers, which run before a
  # sanitizer's runtime is up: sanitized builds take the one portable version.
  target_compile_definitions(tarvek_options INTERFACE TARVEK_SANITIZED=1)
  add_compile_options(${TARVEK_SANITIZE_FLAGS})
  add_link_options(${TARVEK_SANITIZE_FLAGS})
endif()
if(TARVEK_FUZZ)
  target_compile_definitions(tarvek_options INTERFACE TARVEK_SANITIZED=1)
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
    -fno-sanitize=null,vptr,object-size)
  add_link_options(-fsanitize=address,undefined)
endif()

# 64-bit Arm fuses products and sums in its base instruction set, and which of them a compiler fuses depends on the
# shape of the loop around them: two forms of one formula would differ in their last bits, a filter at rest from one
# that moves. The kernels of the real-time seam ask for it themselves, since nothing compares them to the bit.
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)")
  add_compile_options(-ffp-contract=off)
  # Notes on a call's form that compilers before GCC 10 had otherwise: all that is linked is from one compiler.
  add_compile_options(-Wno-psabi)
endif()
