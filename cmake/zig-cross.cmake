# Cross-compiles the library and the tool with Zig's toolchain, which carries
# the C library headers of macOS and musl, for a machine this one cannot run:
#   cmake -S . -B build/cross/x86_64-macos \
#     -DCMAKE_TOOLCHAIN_FILE=cmake/zig-cross.cmake \
#     -DKELPROFILE_CROSS_TARGET=x86_64-macos -DKELPROFILE_CROSS_DIR=build/cross
# scripts/cross.sh sets up KELPROFILE_CROSS_DIR: the compiler wrappers in
# bin/ (their Zig target carries the oldest macOS the build loads on, 11.0),
# libxml2's headers with a stand-in for ICU's converter header in include/,
# and text stubs of the system's libxml2 and libiconv in lib/.
#
# Everything the project's own CMakeLists.txt decides for the platform (on
# macOS the dylib's name, install name and visibility) is what gets built.
if(NOT KELPROFILE_CROSS_TARGET OR NOT KELPROFILE_CROSS_DIR)
  message(FATAL_ERROR "set KELPROFILE_CROSS_TARGET and KELPROFILE_CROSS_DIR")
endif()
# try_compile projects see the toolchain file again, with these two.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KELPROFILE_CROSS_TARGET KELPROFILE_CROSS_DIR)
get_filename_component(_cross "${KELPROFILE_CROSS_DIR}" ABSOLUTE)

if(KELPROFILE_CROSS_TARGET MATCHES "macos")
  set(CMAKE_SYSTEM_NAME Darwin)
  # Nothing of the host's Xcode is looked for: there is none. The minimum
  # macOS is the wrappers' (in their Zig target, which is what the linker
  # writes into LC_BUILD_VERSION), not a -mmacosx-version-min of CMake's.
  set(CMAKE_OSX_SYSROOT "" CACHE PATH "" FORCE)
  set(CMAKE_OSX_DEPLOYMENT_TARGET "" CACHE STRING "" FORCE)
else()
  set(CMAKE_SYSTEM_NAME Linux)
endif()
string(REGEX MATCH "^[^-]+" CMAKE_SYSTEM_PROCESSOR "${KELPROFILE_CROSS_TARGET}")

set(CMAKE_C_COMPILER "${_cross}/bin/${KELPROFILE_CROSS_TARGET}-cc")
set(CMAKE_CXX_COMPILER "${_cross}/bin/${KELPROFILE_CROSS_TARGET}-c++")
set(CMAKE_AR "${_cross}/bin/ar" CACHE FILEPATH "" FORCE)
set(CMAKE_RANLIB "${_cross}/bin/ranlib" CACHE FILEPATH "" FORCE)

# Libraries and headers come from the cross folder only, never from this
# machine's own system folders (their glibc headers would shadow the
# target's C library).
set(CMAKE_FIND_ROOT_PATH "${_cross}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(LIBXML2_INCLUDE_DIR "${_cross}/include/libxml2" CACHE PATH "" FORCE)
if(KELPROFILE_CROSS_TARGET MATCHES "macos")
  # The system's libxml2 and libiconv, as text stubs: the link checks that
  # every name the library takes from them is one they export.
  set(LIBXML2_LIBRARY "${_cross}/lib/libxml2.tbd" CACHE FILEPATH "" FORCE)
  set(Iconv_LIBRARY "${_cross}/lib/libiconv.tbd" CACHE FILEPATH "" FORCE)
  set(Iconv_INCLUDE_DIR "${_cross}/include/iconv" CACHE PATH "" FORCE)
  set(Iconv_IS_BUILT_IN FALSE CACHE BOOL "" FORCE)
else()
  # musl has iconv in its C library; libxml2 is not linked (compile only).
  set(LIBXML2_LIBRARY "${_cross}/lib/libxml2.none" CACHE FILEPATH "" FORCE)
  set(Iconv_IS_BUILT_IN TRUE CACHE BOOL "" FORCE)
endif()
set(nlohmann_json_DIR "${_cross}/lib/cmake/nlohmann_json" CACHE PATH "" FORCE)
