# Builds programs that run on any Linux of this machine's processor: clang, with musl in the place of the C library and
# LLVM's standard library, all of it linked statically. What they need lies below build/musl-root, where
# `scripts/platform musl` puts it.
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-linux-musl)
set(CMAKE_CXX_COMPILER_TARGET x86_64-linux-musl)

get_filename_component(musl_root ${CMAKE_CURRENT_LIST_DIR}/../build/musl-root ABSOLUTE)
set(CMAKE_SYSROOT ${musl_root}/sysroot)
set(CMAKE_FIND_ROOT_PATH ${musl_root})
# Named, or the compiler would take the headers that another package puts beside it, which are made for glibc.
add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:-nostdinc++;-isystem${CMAKE_SYSROOT}/usr/include/c++/v1>")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -stdlib=libc++ -rtlib=compiler-rt -unwindlib=libunwind")
# Where Debian has it on the machine that builds.
set(utf8cpp_DIR ${musl_root}/usr/lib/x86_64-linux-gnu/cmake/utf8cpp CACHE PATH "")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
