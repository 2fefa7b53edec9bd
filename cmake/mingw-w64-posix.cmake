# Cross build for 64-bit Windows with MinGW-w64's posix-thread compilers (std::thread and
# std::mutex need them). The runtime is linked statically, so the .exe files run on their own
# (and under wine, which runs the tests and the sample builder).
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(TORQUIL_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${TORQUIL_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TORQUIL_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER ${TORQUIL_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TORQUIL_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")

# wine64 runs the .exe files; Debian's wine package starts 64-bit programs through "wine".
find_program(TORQUIL_WINE NAMES wine64 wine)
if(TORQUIL_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${TORQUIL_WINE})
endif()

# Header-only libraries of the build machine (CLI11, nlohmann-json) through config files that
# expose only their own folders, never the build machine's /usr/include as a whole.
set(CLI11_DIR ${CMAKE_CURRENT_LIST_DIR}/header-only CACHE PATH "")
set(nlohmann_json_DIR ${CMAKE_CURRENT_LIST_DIR}/header-only CACHE PATH "")
# GoogleTest is built from Debian's source package (libgtest-dev) inside this build.
set(TORQUIL_GTEST_SOURCE_DIR /usr/src/googletest CACHE PATH "GoogleTest sources built with the project")
