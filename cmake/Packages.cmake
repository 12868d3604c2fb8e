# cpack -G DEB: libvintra1, libvintra-dev and vintra-tools.
set(VINTRA_MAINTAINER "Vintra developers <vintra@localhost>" CACHE STRING "Maintainer of the Debian packages")

set(CPACK_PACKAGE_NAME vintra)
set(CPACK_PACKAGE_VENDOR "Vintra developers")
set(CPACK_PACKAGE_CONTACT ${VINTRA_MAINTAINER})
set(CPACK_STRIP_FILES ON)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The library's own packages fit each other, and the system's are found out from what is linked.
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR})
foreach(configuration IN LISTS CMAKE_CONFIGURATION_TYPES)
  list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/${configuration})
endforeach()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libvintra${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Levelled, printf-style records from any thread, into one file, a ring of
files, or files per day that are removed at a given age. Along with it come
an INI reader and writer, and utilities for paths, folders and whole files.")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libvintra-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEVELOPMENT_DEPENDS runtime)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, the static library, manual pages, examples, and what CMake and
pkg-config need to build programs with Vintra.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME vintra-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION utils)
set(CPACK_COMPONENT_TOOLS_DEPENDS runtime)
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "The command vintra shows and follows logs, scrambled or not, writes standard
input into a log, and checks the log sections of INI files. With
configurations for rsyslog and lnav.")

# Since which version a program that uses a symbol works: all of them since the first one.
file(STRINGS tests/exports.txt exports)
set(symbols "libvintra.so.${PROJECT_VERSION_MAJOR} libvintra${PROJECT_VERSION_MAJOR} #MINVER#\n")
foreach(symbol IN LISTS exports)
  string(REPLACE "@@" "@" symbol ${symbol})
  string(APPEND symbols " ${symbol} 1.0.0\n")
endforeach()
string(APPEND symbols " VINTRA_1@VINTRA_1 1.0.0\n")
file(WRITE ${PROJECT_BINARY_DIR}/deb/symbols "${symbols}")
set(VINTRA_DEB_LIBDIR /usr/${CMAKE_INSTALL_LIBDIR})
configure_file(packaging/postrm.in deb/postrm @ONLY)
file(CHMOD ${PROJECT_BINARY_DIR}/deb/postrm FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
  GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/deb/symbols ${PROJECT_BINARY_DIR}/deb/postrm ${PROJECT_SOURCE_DIR}/packaging/triggers)

# What every Debian package has beside its own files.
function(package_documents component package)
  set(folder ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES packaging/copyright DESTINATION ${folder} COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${PROJECT_BINARY_DIR}/deb/changelog.gz DESTINATION ${folder} COMPONENT ${component} EXCLUDE_FROM_ALL)
endfunction()
package_documents(runtime libvintra${PROJECT_VERSION_MAJOR})
package_documents(development libvintra-dev)
package_documents(tools vintra-tools)
execute_process(COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  OUTPUT_FILE ${PROJECT_BINARY_DIR}/deb/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md tests/exports.txt)

include(CPack)
