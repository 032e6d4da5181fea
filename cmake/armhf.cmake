# Toolchain file for 32-bit ARM: a cross-compiler of this machine, headers and libraries of a sysroot, and
# qemu's user mode emulator to run the tests. Debian's, unless set otherwise (docs/porting.md).
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(KELM_CROSS arm-linux-gnueabihf- CACHE STRING "What the names of the cross-compiler's programs begin with")
set(KELM_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../build/sysroot-armhf" CACHE PATH "The box's headers and libraries")
get_filename_component(KELM_SYSROOT "${KELM_SYSROOT}" ABSOLUTE)
# Without it the compiler and pkg-config would look among this machine's own.
if(NOT IS_DIRECTORY "${KELM_SYSROOT}/usr/include")
  message(FATAL_ERROR "KELM_SYSROOT: there is no ${KELM_SYSROOT}/usr/include. scripts/sysroot-armhf makes Debian's sysroot; "
                      "-DKELM_SYSROOT=FOLDER names another.")
endif()
# What CMake compiles to try the compiler out reads this file as well.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KELM_CROSS KELM_SYSROOT)

set(CMAKE_CXX_COMPILER ${KELM_CROSS}g++)
set(CMAKE_SYSROOT "${KELM_SYSROOT}")

# Programs are this machine's (dbusxx-xml2cpp, pkg-config), all else is the sysroot's alone.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${KELM_SYSROOT}")
file(GLOB KELM_PKG_CONFIG_FOLDERS "${KELM_SYSROOT}/usr/lib/pkgconfig" "${KELM_SYSROOT}/usr/lib/*/pkgconfig"
     "${KELM_SYSROOT}/usr/share/pkgconfig")
list(JOIN KELM_PKG_CONFIG_FOLDERS ":" KELM_PKG_CONFIG_FOLDERS)
set(ENV{PKG_CONFIG_LIBDIR} "${KELM_PKG_CONFIG_FOLDERS}")

# Run through qemu explicitly; binfmt_misc may be absent.
find_program(KELM_EMULATOR qemu-arm DOC "Runs the tests; without it they can be built only")
if(KELM_EMULATOR)
  get_filename_component(KELM_LAUNCHER "${CMAKE_CURRENT_LIST_DIR}/../box/emulate" ABSOLUTE)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${KELM_LAUNCHER};${KELM_EMULATOR};${KELM_SYSROOT}")
endif()
