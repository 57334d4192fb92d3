# Cross-build for 64-bit Windows with Debian's mingw-w64, posix thread model
# (std::thread and GoogleTest need it). Test executables run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KTCORE_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   ${KTCORE_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KTCORE_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER  ${KTCORE_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KTCORE_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# Hosts point CMAKE_PREFIX_PATH at an install tree outside the mingw root.
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE BOTH)

set(CMAKE_CROSSCOMPILING_EMULATOR wine)
