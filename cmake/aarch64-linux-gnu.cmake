# 64-bit Arm by Debian's cross compiler, tested under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
# Packages of the architecture (libedit2:arm64 ...) come with a C library; without one, it is the cross compiler's.
if(NOT EXISTS /lib/ld-linux-aarch64.so.1)
  list(APPEND CMAKE_CROSSCOMPILING_EMULATOR -L /usr/aarch64-linux-gnu)
endif()
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig)
