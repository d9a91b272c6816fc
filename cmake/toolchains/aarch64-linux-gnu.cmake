# Cross build for the phone's arm64 CPU with Debian's aarch64-linux-gnu toolchain
# (g++-aarch64-linux-gnu). What it builds runs on an x86-64 machine under qemu-aarch64
# (qemu-user): ctest and the tests that start the workbench tool go through the emulator, so no
# binfmt_misc registration is needed.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)

set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

# The target's C library as the cross packages install it; nothing of the host's is searched
# for libraries, headers or packages.
set(PC_CROSS_SYSROOT /usr/aarch64-linux-gnu CACHE PATH "The aarch64 C library's root")
set(CMAKE_FIND_ROOT_PATH ${PC_CROSS_SYSROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# pkg-config likewise sees only the target's .pc files, so the host's cairo is never linked in.
# Without arm64 cairo and libpng the workbench builds without PNG pages and images, as anywhere.
set(ENV{PKG_CONFIG_LIBDIR} "${PC_CROSS_SYSROOT}/lib/pkgconfig")

find_program(PC_QEMU_AARCH64 qemu-aarch64)
if(PC_QEMU_AARCH64)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${PC_QEMU_AARCH64} -L ${PC_CROSS_SYSROOT})
endif()
