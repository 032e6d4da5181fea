# The .deb of this build, made by cpack: everything that is installed, with the scripts in debian/.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "kelm-trd developers <kelm-trd@kelm.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "TR-069 parameters of an IPTV set-top box on D-Bus")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "The daemon keeps the box's TR-069 parameters in memory, refreshes them every
five seconds and serves them on the session bus to the box's CWMP client. The
package contains a session bus for boxes without one.")
set(CPACK_DEBIAN_PACKAGE_NAME kelm-trd)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# The stripped symbols go into kelm-trd-dbgsym, a .ddeb beside the .deb.
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
set(CPACK_OBJCOPY_EXECUTABLE ${CMAKE_OBJCOPY})
set(CPACK_READELF_EXECUTABLE ${CMAKE_READELF})
# Needed to collect /etc and /var, which are absolute.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# The units' bus, and the tool that waits for it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "dbus-daemon, dbus-bin")
# Commands of the box's image or of busybox. Without one of them its parameters stay empty.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "iw, net-tools | busybox, procps | busybox")
set(KELM_ARMHF_DEPENDS "libc6 (>= 2.34), libdbus-1-3 (>= 1.9.14), libdbus-c++-1-0v5 (>= 0.9.0), libgcc-s1 (>= 3.5),"
                       "libjson-c5 (>= 0.15), libstdc++6 (>= 11)")
if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CXX_LIBRARY_ARCHITECTURE STREQUAL arm-linux-gnueabihf)
  # Another platform has its own packages.
  return()
elseif(CMAKE_CROSSCOMPILING)
  # dpkg-shlibdeps needs the foreign libraries' packages installed; a sysroot has no record of them. A test compares
  # this list with the libraries that the program needs.
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
  list(JOIN KELM_ARMHF_DEPENDS " " depends)
  string(PREPEND CPACK_DEBIAN_PACKAGE_DEPENDS "${depends}, ")
else()
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()

set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "")
foreach(file conffiles postinst prerm postrm)
  list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${CMAKE_CURRENT_SOURCE_DIR}/debian/${file})
endforeach()
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/documents.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/debian/dbgsym.cmake)
set(CPACK_KELM_SOURCE ${PROJECT_SOURCE_DIR})
include(CPack)
