# nv_options: how every target of the project is compiled.
add_library(nv_options INTERFACE)
if(MSVC)
  # 5030: an attribute of other compilers.
  target_compile_options(nv_options INTERFACE /W4 /wd5030 /utf-8 $<$<BOOL:${NV_WERROR}>:/WX>)
else()
  target_compile_options(nv_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                              $<$<BOOL:${NV_WERROR}>:-Werror>)
  # Objects do not tell in which folder they were built, so that a compiler cache serves every build.
  target_compile_options(nv_options INTERFACE -fdebug-prefix-map=${PROJECT_BINARY_DIR}=.)
  if(NOT PROJECT_IS_TOP_LEVEL)
    # Whatever the project around this one does without.
    target_compile_options(nv_options INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:-fexceptions;-frtti>")
  endif()
endif()
# Hardened as Debian does it, where the compiler can. The sanitizers watch in ways of their own.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT NV_SANITIZE)
  include(CheckCXXCompilerFlag)
  foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection)
    string(MAKE_C_IDENTIFIER "NV_HAS${flag}" isKnown)
    check_cxx_compiler_flag(${flag} ${isKnown})
    target_compile_options(nv_options INTERFACE $<$<BOOL:${${isKnown}}>:${flag}>)
  endforeach()
  # Needs an optimised build.
  target_compile_options(nv_options INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2>")
  target_link_options(nv_options INTERFACE -Wl,-z,relro,-z,now)
endif()
if(NV_SANITIZE)
  target_compile_options(nv_options INTERFACE -fsanitize=${NV_SANITIZE} -fno-omit-frame-pointer
                                              -fno-sanitize-recover=all)
  target_link_options(nv_options INTERFACE -fsanitize=${NV_SANITIZE})
endif()
