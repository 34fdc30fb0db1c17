# Builds 32-bit x86 code on an x86-64 Debian machine with the multilib
# compilers, against the i386 packages installed through multiarch:
#   cmake -S . -B build/i386 -DCMAKE_TOOLCHAIN_FILE=cmake/i386.cmake
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER gcc)
set(CMAKE_CXX_COMPILER g++)
set(CMAKE_C_FLAGS_INIT -m32)
set(CMAKE_CXX_FLAGS_INIT -m32)
set(CMAKE_EXE_LINKER_FLAGS_INIT -m32)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -m32)
set(CMAKE_MODULE_LINKER_FLAGS_INIT -m32)
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
# Libraries and packages come from the i386 folders only, never from the
# x86-64 ones beside them.
set(CMAKE_IGNORE_PATH /usr/lib/x86_64-linux-gnu /usr/lib/x86_64-linux-gnu/cmake)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/i386-linux-gnu/pkgconfig:/usr/share/pkgconfig)
# On a kernel without 32-bit support, pass an emulator to run the programs:
#   -DCMAKE_CROSSCOMPILING_EMULATOR=/usr/bin/qemu-i386
