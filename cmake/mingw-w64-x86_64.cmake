# Toolchain of the windows preset: Debian's g++-mingw-w64-x86-64.
set(CMAKE_SYSTEM_PROCESSOR x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
