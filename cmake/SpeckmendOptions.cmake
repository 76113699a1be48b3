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
