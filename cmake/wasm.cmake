# Builds for WebAssembly with Debian's Emscripten, and runs what was built under Node. What the library needs lies below
# build/wasm-root, where `scripts/platform wasm` puts it.
set(EMSCRIPTEN_ROOT_PATH /usr/share/emscripten)
# Emscripten's start-up code would take Node's fetch for a browser's, which reads no files.
set(CMAKE_CROSSCOMPILING_EMULATOR node --no-experimental-fetch)
include(${EMSCRIPTEN_ROOT_PATH}/cmake/Modules/Platform/Emscripten.cmake)

get_filename_component(wasm_root ${CMAKE_CURRENT_LIST_DIR}/../build/wasm-root ABSOLUTE)
list(PREPEND CMAKE_FIND_ROOT_PATH ${wasm_root})
list(APPEND CMAKE_SYSTEM_PREFIX_PATH /usr)
# Where Debian has it on the machine that builds.
set(utf8cpp_DIR ${wasm_root}/usr/lib/x86_64-linux-gnu/cmake/utf8cpp CACHE PATH "")

# Exceptions of the engine itself: those made of JavaScript would take a call through it for each call that may throw.
set(CMAKE_CXX_FLAGS_INIT -fwasm-exceptions)
# Programs run under Node, with the files of the machine.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-sALLOW_MEMORY_GROWTH=1 -sNODERAWFS=1 -sEXIT_RUNTIME=1 -sENVIRONMENT=node")
