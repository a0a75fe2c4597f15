include(GNUInstallDirs)
install(FILES include/nvsupport/nvsupport.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/nvsupport)
