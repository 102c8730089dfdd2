# Cross build for s390x, a big-endian host, against a sysroot of Debian's
# s390x packages (scripts/s390x-test.sh makes one). Programs run under
# qemu-user, so CTest can run the test suite on this machine.
#   cmake -S . -B build-s390x -DCMAKE_TOOLCHAIN_FILE=cmake/s390x-toolchain.cmake \
#     -DVELMIO_S390X_SYSROOT=/path/to/sysroot
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_C_COMPILER s390x-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)

if(NOT VELMIO_S390X_SYSROOT)
  set(VELMIO_S390X_SYSROOT $ENV{VELMIO_S390X_SYSROOT})
endif()
if(NOT VELMIO_S390X_SYSROOT)
  message(FATAL_ERROR "Set VELMIO_S390X_SYSROOT to the s390x sysroot (scripts/s390x-test.sh makes one)")
endif()
# try_compile projects see the toolchain file again, without the cache.
set(ENV{VELMIO_S390X_SYSROOT} ${VELMIO_S390X_SYSROOT})
set(CMAKE_SYSROOT ${VELMIO_S390X_SYSROOT})
set(CMAKE_FIND_ROOT_PATH ${VELMIO_S390X_SYSROOT})
# Build tools (genrb, icupkg) are the host's; libraries and headers the sysroot's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${VELMIO_S390X_SYSROOT}/usr/lib/s390x-linux-gnu/pkgconfig:${VELMIO_S390X_SYSROOT}/usr/share/pkgconfig)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${VELMIO_S390X_SYSROOT})

set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x -L ${VELMIO_S390X_SYSROOT})
