# Toolchain of the windows32 preset: Debian's g++-mingw-w64-i686.
set(CMAKE_SYSTEM_PROCESSOR i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
