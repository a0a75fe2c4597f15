# Installs the operators' files, with the paths of this installation in the place of those below /usr/local: what systemd
# looks for where it looks for it, the rest where operators find it. Runs when things are installed.
function(install_adapted file destination)
  file(READ ${CMAKE_CURRENT_LIST_DIR}/${file} text)
  string(REPLACE "/usr/local/" "${CMAKE_INSTALL_PREFIX}/" text "${text}")
  message(STATUS "Installing: $ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${destination}")
  file(WRITE "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${destination}" "${text}")
  file(CHMOD "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}/${destination}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

foreach(unit nvservice@.service nvservice@.socket nvservice-lighttpd.service nvservice-expire.service nvservice-expire.timer)
  install_adapted(${unit} lib/systemd/system/${unit})
endforeach()
install_adapted(sysusers.conf lib/sysusers.d/nvservice.conf)
install_adapted(tmpfiles.conf lib/tmpfiles.d/nvservice.conf)
foreach(file lighttpd.conf nginx.conf logrotate.conf settings Containerfile)
  install_adapted(${file} share/nvservice/deploy/${file})
endforeach()
