# SPDX-License-Identifier: MIT
# Compiler flags that every target of the project shares: warnings, optimisation, sanitizers.

option(SPECKMEND_WERROR "Treat warnings as errors" OFF)
set(SPECKMEND_SANITIZE "" CACHE STRING "Sanitizers: empty, address (with undefined) or thread")

# One file offset width on every machine: readdir() of a 32-bit build fails on large inode numbers without it.
add_compile_definitions(_FILE_OFFSET_BITS=64)
add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(SPECKMEND_WERROR)
  add_compile_options(-Werror)
endif()

if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Qt Test's macros take no arguments where the standard wants one.
  add_compile_options(-Wno-gnu-zero-variadic-macro-arguments)
endif()
if(CMAKE_CXX_COMPILER MATCHES "clazy$")
  # Whole levels are on; each exception says why.
  # - range-loop-detach, detaching-temporary: what nobody shares does not detach, and qAsConst() is younger than Qt 5.5.
  # - non-pod-global-static: the tests' names of cameras; the one mutex is there before any thread.
  # - connect-3arg-lambda, lambda-in-connect: tests and tour connect their own locals for as long as these are there.
  # - connect-not-normalized: clang-format writes the other way.
  # - qproperty-without-notify: the base class of the spin box tells nobody of its step either.
  string(JOIN "," clazy_checks level0 level1 no-range-loop-detach no-detaching-temporary no-non-pod-global-static
    no-connect-3arg-lambda no-lambda-in-connect no-connect-not-normalized no-qproperty-without-notify)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env "CLAZY_CHECKS=${clazy_checks}")
endif()

# The detector's loops gain several times over plain -O2 from vectorisation.
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")

if(SPECKMEND_SANITIZE STREQUAL "address")
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
elseif(SPECKMEND_SANITIZE STREQUAL "thread")
  add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
  add_link_options(-fsanitize=thread)
elseif(NOT SPECKMEND_SANITIZE STREQUAL "")
  message(FATAL_ERROR "SPECKMEND_SANITIZE is '${SPECKMEND_SANITIZE}': use address or thread, or leave it empty.")
endif()
