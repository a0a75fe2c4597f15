# The Debian packages, one for each component of the installation. scripts/make-packages.sh makes them.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nvsupport)
set(CPACK_PACKAGE_CONTACT "The nvsupport maintainers <nvsupport@norvane.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian_files.cmake)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(summary "support library of a desktop map application")
set(about "nvsupport looks after a user's online account with dialogs of its own, searches
the map shop, downloads files and reads ranges over the web. A host program
loads it and calls it through ten plain C functions.
")
set(CPACK_COMPONENTS_ALL "")
# nv_package(COMPONENT NAME TITLE TEXT [FIELD VALUE]...): fields as CPack knows them, without its prefix.
function(nv_package component name title text)
  string(TOUPPER ${component} upper)
  set(fields DEBIAN_${upper}_PACKAGE_NAME ${name} COMPONENT_${upper}_DESCRIPTION "${summary} - ${title}\n${about}\n${text}")
  while(ARGN)
    list(POP_FRONT ARGN field value)
    list(APPEND fields DEBIAN_${upper}_${field} "${value}")
  endwhile()
  while(fields)
    list(POP_FRONT fields field value)
    set(CPACK_${field} "${value}" PARENT_SCOPE)
  endwhile()
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} ${component} PARENT_SCOPE)
endfunction()

set(same "(= ${PROJECT_VERSION})")
nv_package(runtime libnvsupport1 "module" "This package holds the module, its web client and its translations."
           PACKAGE_DEPENDS ca-certificates PACKAGE_RECOMMENDS "libnvsupport1-qt ${same}")
nv_package(development libnvsupport-dev "development files" "This package holds the header, build files, guides and examples."
           PACKAGE_DEPENDS "libnvsupport1 ${same}" PACKAGE_SECTION libdevel DEBUGINFO_PACKAGE OFF)
if(TARGET nvsupport-qt)
  nv_package(qt libnvsupport1-qt "dialogs" "This package holds the dialogs, and the example host with a window."
             PACKAGE_DEPENDS "libnvsupport1 ${same}")
endif()
if(TARGET nvhost AND TARGET nvcatalogue)
  nv_package(tools nvsupport-tools "tools" "This package holds the example host for the command line and the translators'\ntool."
             PACKAGE_DEPENDS "libnvsupport1 ${same}" PACKAGE_RECOMMENDS "libnvsupport1-qt ${same}" PACKAGE_SECTION utils)
endif()
# The programs run behind any web server that knows FastCGI or CGI, so none is required; those of the guide come along unless they
# are refused. libpq is for a PostgreSQL address alone.
if(TARGET svcapp)
  nv_package(service nvsupport-service "account and map shop service"
             "This package holds the programs of the service, its pages, and what runs them\nbehind lighttpd or nginx."
             PACKAGE_RECOMMENDS "lighttpd-mod-openssl | nginx" PACKAGE_SUGGESTS libpq5 PACKAGE_SECTION web)
endif()
include(CPack)
