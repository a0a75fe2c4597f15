# For the folders of programs in a cross build with Debian's MinGW-w64: the compiler whose standard library has threads,
# which the DLL does without, and the header libraries of this machine without its system's headers beside them.
cmake_path(GET CMAKE_CXX_COMPILER FILENAME compiler)
find_program(NV_CXX_WITH_THREADS ${compiler}-posix REQUIRED)
set(CMAKE_CXX_COMPILER ${NV_CXX_WITH_THREADS})
add_link_options(-static)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/include)
foreach(folder CLI nlohmann)
  file(CREATE_LINK /usr/include/${folder} ${CMAKE_CURRENT_BINARY_DIR}/include/${folder} SYMBOLIC)
endforeach()
foreach(library CLI11::CLI11 nlohmann_json::nlohmann_json)
  add_library(${library} INTERFACE IMPORTED)
  target_include_directories(${library} INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/include)
endforeach()
