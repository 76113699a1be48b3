# SPDX-License-Identifier: MIT
# Builds for Debian's armhf (32-bit ARM, hard float) against the folder of its headers and libraries that
# cmake/armhf-sysroot.sh fills, and runs what was built under the emulator. Beyond that, a build is like any other.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(ARMHF_SYSROOT "$ENV{ARMHF_SYSROOT}" CACHE PATH "Folder that cmake/armhf-sysroot.sh has filled")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ARMHF_SYSROOT)
if(NOT EXISTS "${ARMHF_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}")
  message(FATAL_ERROR "There are no armhf libraries in '${ARMHF_SYSROOT}' (ARMHF_SYSROOT): "
    "./test.sh armhf puts them there, and so does cmake/armhf-sysroot.sh.")
endif()

set(CMAKE_C_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-gcc)
set(CMAKE_CXX_COMPILER ${CMAKE_LIBRARY_ARCHITECTURE}-g++)

# Headers, libraries and packages are those of the target alone, programs those of this machine.
set(CMAKE_SYSROOT "${ARMHF_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH "${CMAKE_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Notes on what GCC 7 changed: all of Debian 12 is newer than that.
set(CMAKE_CXX_FLAGS_INIT "-Wno-psabi")

find_program(QEMU_ARM NAMES qemu-arm qemu-arm-static)
if(QEMU_ARM)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${QEMU_ARM}")
  # For tests and the programs that they start. The emulated machine has nothing that Debian's armhf does not take
  # for granted: no NEON, no division of whole numbers. The folder of libraries has no drivers of graphics cards.
  set(SPECKMEND_EMULATOR_ENVIRONMENT
    "QEMU_LD_PREFIX=${CMAKE_SYSROOT}" "QEMU_CPU=cortex-a9,neon=off" "QT_XCB_GL_INTEGRATION=none")
endif()
