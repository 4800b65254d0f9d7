# Builds with clang and LLVM's standard library. GoogleTest, built with the same one, lies below build/libcxx-root, where
# `scripts/platform libcxx` puts it.
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_FLAGS_INIT -stdlib=libc++)
get_filename_component(libcxx_root ${CMAKE_CURRENT_LIST_DIR}/../build/libcxx-root ABSOLUTE)
list(PREPEND CMAKE_PREFIX_PATH ${libcxx_root}/usr)
