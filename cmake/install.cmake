# What an installation holds, in the components that the packages are made of (debian/rules). The module, its plugins and
# the catalogues stand side by side, because the module looks for the others beside itself.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)
set(moduleFolder $<IF:$<BOOL:${WIN32}>,${CMAKE_INSTALL_BINDIR},${CMAKE_INSTALL_LIBDIR}>)

# The programs that link the module find it where it is installed. Below /usr the system looks by itself.
if(NOT WIN32 AND NOT CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  set(runPath "-Wl,-rpath,\${libdir}")
  target_link_options(nvsupport INTERFACE
    $<INSTALL_INTERFACE:-Wl,-rpath,$<INSTALL_PREFIX>/${CMAKE_INSTALL_LIBDIR}>)
endif()
target_include_directories(nvsupport INTERFACE $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME runtime)
install(TARGETS nvsupport EXPORT nvsupport
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
if(TARGET nvsupport-web)
  install(TARGETS nvsupport-web LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
get_target_property(catalogues nvsupport_catalogues NV_DELIVERED)
install(FILES ${catalogues} DESTINATION ${moduleFolder})

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME qt)
if(TARGET nvsupport-qt)
  install(TARGETS nvsupport-qt LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME gui)
foreach(program nvhost-gui nvcatalogue-preview)
  if(TARGET ${program})
    install(TARGETS ${program})
    # The manual of the program that starts it tells about it.
    string(REGEX MATCH "^[a-z]+" starter ${program})
    file(WRITE ${PROJECT_BINARY_DIR}/${program}.1 ".so man1/${starter}.1\n")
    install(FILES ${PROJECT_BINARY_DIR}/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  endif()
endforeach()

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME tools)
foreach(program nvhost nvcatalogue)
  if(TARGET ${program})
    install(TARGETS ${program})
    install(FILES docs/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES tools/completion/nvsupport.bash
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME ${program})
  endif()
endforeach()

set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME development)
install(DIRECTORY include/nvsupport DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES docs/man/nvsupport.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3)
install(FILES CHANGELOG.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/pictures DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR})
file(GLOB documents CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} README.md docs/*.md)
foreach(document IN LISTS documents)
  # A link to what stays in the tree becomes plain text.
  file(READ ${document} text)
  string(REGEX REPLACE "\\[([^]]+)\\]\\((\\.\\./)?(include/[^)]*|service|LICENSE|CONTRIBUTING.md)\\)" "\\1" text "${text}")
  file(WRITE ${PROJECT_BINARY_DIR}/documents/${document} "${text}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${document})
endforeach()
install(DIRECTORY ${PROJECT_BINARY_DIR}/documents/ DESTINATION ${CMAKE_INSTALL_DOCDIR})

# find_package(nvsupport) gives the target nvsupport::nvsupport.
set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/nvsupport)
install(EXPORT nvsupport NAMESPACE nvsupport:: FILE nvsupport-config.cmake DESTINATION ${packageFolder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nvsupport-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/nvsupport-config-version.cmake DESTINATION ${packageFolder})

# Relative to the file itself, so that an installation can be moved.
file(RELATIVE_PATH prefixFromPkgConfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
if(WIN32)
  set(linkName -lnvsupport)
else()
  set(linkName -l:nvsupport.so)
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/nvsupport.pc.in ${PROJECT_BINARY_DIR}/nvsupport.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/nvsupport.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
