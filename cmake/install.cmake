# What a package holds. The module, the Qt display and the catalogues stand side by side, because the module looks for
# the other two beside itself; the catalogues are installed where they are made.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

target_include_directories(nvsupport INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                                               $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
install(TARGETS nvsupport EXPORT nvsupport
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES include/nvsupport/nvsupport.h include/nvsupport/nvsupport_module.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/nvsupport)
if(TARGET nvsupport-qt)
  install(TARGETS nvsupport-qt LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
endif()
foreach(program nvhost nvhost-gui nvcatalogue)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()

# find_package(nvsupport) gives the target nvsupport::nvsupport.
set(packageFolder ${CMAKE_INSTALL_LIBDIR}/cmake/nvsupport)
install(EXPORT nvsupport NAMESPACE nvsupport:: FILE nvsupport-config.cmake DESTINATION ${packageFolder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/nvsupport-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/nvsupport-config-version.cmake DESTINATION ${packageFolder})

# Relative to the file itself, so that a package can be moved.
file(RELATIVE_PATH prefixFromPkgConfig /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
if(WIN32)
  set(linkName -lnvsupport)
else()
  set(linkName -l:nvsupport.so)
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/nvsupport.pc.in ${PROJECT_BINARY_DIR}/nvsupport.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/nvsupport.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
