# nv_options: how every target of the project is compiled.
add_library(nv_options INTERFACE)
if(MSVC)
  # 5030: an attribute of other compilers.
  target_compile_options(nv_options INTERFACE /W4 /wd5030 /utf-8 $<$<BOOL:${NV_WERROR}>:/WX>)
else()
  target_compile_options(nv_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow
                                              $<$<BOOL:${NV_WERROR}>:-Werror>)
endif()
if(NV_SANITIZE)
  target_compile_options(nv_options INTERFACE -fsanitize=${NV_SANITIZE} -fno-omit-frame-pointer
                                              -fno-sanitize-recover=all)
  target_link_options(nv_options INTERFACE -fsanitize=${NV_SANITIZE})
endif()
