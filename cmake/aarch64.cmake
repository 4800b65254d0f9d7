# Builds for Linux on aarch64 with Debian's cross compiler, and runs what was built under qemu-user. What the library needs
# lies below build/aarch64-root, where `scripts/platform aarch64` puts it.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER aarch64-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

get_filename_component(aarch64_root ${CMAKE_CURRENT_LIST_DIR}/../build/aarch64-root ABSOLUTE)
set(CMAKE_FIND_ROOT_PATH ${aarch64_root} /usr/aarch64-linux-gnu)
# Where Debian has it on the machine that builds.
set(utf8cpp_DIR ${aarch64_root}/usr/lib/x86_64-linux-gnu/cmake/utf8cpp CACHE PATH "")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# Where the shared libraries are that those of the build need.
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,-rpath-link,${aarch64_root}/lib/aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64 -L ${aarch64_root})
