# What the DLL has on Windows beside its code: a version that the Explorer shows, the import library and a .def beside
# it, and no debug information within it. Included where the target is made.
set_target_properties(nvsupport PROPERTIES ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
configure_file(${PROJECT_SOURCE_DIR}/src/platform/windows/version.rc.in ${PROJECT_BINARY_DIR}/version.rc @ONLY)
target_sources(nvsupport PRIVATE ${PROJECT_BINARY_DIR}/version.rc)
if(MSVC)
  set_target_properties(nvsupport_objects nvsupport PROPERTIES
                        MSVC_RUNTIME_LIBRARY MultiThreaded$<$<CONFIG:Debug>:Debug>)
endif()
if(NOT MINGW)
  return()
endif()

# A host needs no DLL of the compiler's. The .def is for linkers that make an import library of their own.
set(definitions ${PROJECT_BINARY_DIR}/nvsupport.def)
target_link_options(nvsupport PRIVATE -static -Wl,--output-def,${definitions})
set(debugInformation ${PROJECT_BINARY_DIR}/nvsupport.dll.debug)
add_custom_command(TARGET nvsupport POST_BUILD
  COMMAND ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:nvsupport> ${debugInformation}
  COMMAND ${CMAKE_STRIP} --strip-unneeded $<TARGET_FILE:nvsupport>
  COMMAND ${CMAKE_OBJCOPY} --add-gnu-debuglink=${debugInformation} $<TARGET_FILE:nvsupport>
  BYPRODUCTS ${definitions} ${debugInformation}
  VERBATIM)
if(NV_INSTALL)
  install(FILES ${definitions} DESTINATION lib)
  install(FILES ${debugInformation} DESTINATION bin)
endif()
