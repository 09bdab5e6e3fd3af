# Cross build for the 32-bit ARM device (armhf) with Debian's
# arm-linux-gnueabihf toolchain against a Debian armhf sysroot.
#
#   cmake -S . -B build-arm \
#         -DCMAKE_TOOLCHAIN_FILE=cmake/arm-linux-gnueabihf.cmake \
#         -DPLIX_ARM_SYSROOT=/path/to/sysroot
#
# PLIX_ARM_SYSROOT may also come from the environment. scripts/arm-build.sh
# makes the sysroot and runs the whole build and the unit tests.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)

set(PLIX_ARM_TRIPLET arm-linux-gnueabihf)

if(NOT PLIX_ARM_SYSROOT AND DEFINED ENV{PLIX_ARM_SYSROOT})
    set(PLIX_ARM_SYSROOT "$ENV{PLIX_ARM_SYSROOT}")
endif()
if(NOT PLIX_ARM_SYSROOT OR NOT IS_DIRECTORY "${PLIX_ARM_SYSROOT}/usr/lib/${PLIX_ARM_TRIPLET}")
    message(FATAL_ERROR "PLIX_ARM_SYSROOT must name an armhf sysroot "
                        "(got '${PLIX_ARM_SYSROOT}'); scripts/arm-build.sh makes one")
endif()
set(PLIX_ARM_SYSROOT "${PLIX_ARM_SYSROOT}" CACHE PATH "armhf sysroot the cross build compiles and links against")
# try_compile() projects read this file again; hand them the sysroot too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES PLIX_ARM_SYSROOT)

set(CMAKE_SYSROOT "${PLIX_ARM_SYSROOT}")
# Everything is built by this one compiler, so GCC's notes on the ARM
# parameter passing that changed in GCC 7.1 concern no code of the device.
set(CMAKE_C_FLAGS_INIT -Wno-psabi)
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
set(CMAKE_C_COMPILER ${PLIX_ARM_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${PLIX_ARM_TRIPLET}-g++)

# Libraries, headers and CMake packages come from the sysroot only; programs
# (gdbus-codegen, pkg-config) are the build machine's own.
set(CMAKE_FIND_ROOT_PATH "${PLIX_ARM_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The host pkg-config must read the sysroot's .pc files only and prefix the
# paths it prints with the sysroot.
set(ENV{PKG_CONFIG_SYSROOT_DIR} "${PLIX_ARM_SYSROOT}")
set(ENV{PKG_CONFIG_LIBDIR}
    "${PLIX_ARM_SYSROOT}/usr/lib/${PLIX_ARM_TRIPLET}/pkgconfig:${PLIX_ARM_SYSROOT}/usr/share/pkgconfig")
set(ENV{PKG_CONFIG_PATH} "")

# ARM programs run under user-mode emulation with the sysroot's loader and
# libraries: ctest uses this, and so does gtest_discover_tests, which lists
# each test binary's tests right after linking it.
find_program(PLIX_QEMU_ARM qemu-arm REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR "${PLIX_QEMU_ARM};-L;${PLIX_ARM_SYSROOT}")
