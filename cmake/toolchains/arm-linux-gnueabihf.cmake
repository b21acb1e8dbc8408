# 32-bit ARM, hard-float, with Debian's cross compiler. Headers and libraries beside the compiler's
# own come from a sysroot, which scripts/arm-sysroot lays out; the tests run in qemu's user mode.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
# A note for each call that GCC 6 would have compiled otherwise.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)

set(CHANNELLIST_ACCESS_SYSROOT "${CMAKE_CURRENT_LIST_DIR}/../../build/arm-sysroot"
    CACHE PATH "Root of the target's headers and libraries")
get_filename_component(CHANNELLIST_ACCESS_SYSROOT "${CHANNELLIST_ACCESS_SYSROOT}" ABSOLUTE)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CHANNELLIST_ACCESS_SYSROOT)

# Where the libraries that libraries need stand, of which the linker knows no folder.
set(CMAKE_EXE_LINKER_FLAGS_INIT
    "-Wl,-rpath-link,${CHANNELLIST_ACCESS_SYSROOT}/lib/arm-linux-gnueabihf:${CHANNELLIST_ACCESS_SYSROOT}/usr/lib/arm-linux-gnueabihf")

# Not CMAKE_SYSROOT: the compiler keeps its C++ headers and its C library outside of it.
set(CMAKE_FIND_ROOT_PATH "${CHANNELLIST_ACCESS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_CROSSCOMPILING_EMULATOR "qemu-arm;-L;${CHANNELLIST_ACCESS_SYSROOT}")
