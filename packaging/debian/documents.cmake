# cpack runs this when everything is collected. Adds the documents that Debian requires, and compresses them.
set(documents ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/doc/${CPACK_DEBIAN_PACKAGE_NAME})
set(debian ${CPACK_KELM_SOURCE}/packaging/debian)
set(KELM_DEB_VERSION ${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})
string(TIMESTAMP KELM_DEB_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)

configure_file(${debian}/copyright ${documents}/copyright COPYONLY)
configure_file(${CPACK_KELM_SOURCE}/CHANGELOG.md ${documents}/changelog COPYONLY)
configure_file(${debian}/changelog.in ${documents}/changelog.Debian @ONLY)
configure_file(${debian}/lintian-overrides
               ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/lintian/overrides/${CPACK_DEBIAN_PACKAGE_NAME} COPYONLY)

file(GLOB_RECURSE pages LIST_DIRECTORIES false ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/man/*)
foreach(file IN LISTS pages ITEMS ${documents}/changelog ${documents}/changelog.Debian)
  if(NOT file MATCHES "\\.gz$")
    execute_process(COMMAND gzip -9nf ${file} COMMAND_ERROR_IS_FATAL ANY)
  endif()
endforeach()
