# Builds for Windows on x86-64 with Debian's mingw-w64, and runs what was built under Wine. What the library needs
# lies below build/windows-root, where `scripts/platform windows` puts it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(mingw x86_64-w64-mingw32)
# The compilers with POSIX threads: those of the standard library need them.
set(CMAKE_C_COMPILER ${mingw}-gcc-posix)
set(CMAKE_CXX_COMPILER ${mingw}-g++-posix)
set(CMAKE_RC_COMPILER ${mingw}-windres)

get_filename_component(windows_root ${CMAKE_CURRENT_LIST_DIR}/../build/windows-root ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${windows_root} /usr/${mingw})
# Where Debian has it on the machine that builds.
set(utf8cpp_DIR ${windows_root}/usr/lib/x86_64-linux-gnu/cmake/utf8cpp CACHE PATH "")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# As a part of what is built, so that it runs alone.
set(ZLIB_USE_STATIC_LIBS ON)

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine)
