# What is installed where, in three components: runtime (the library), development and tools.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vintra)
set(data_dir ${CMAKE_INSTALL_DATADIR}/vintra)

install(TARGETS vintra EXPORT vintra-targets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
if(VINTRA_BUILD_STATIC)
  install(TARGETS vintra_static EXPORT vintra-targets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
  set(VINTRA_PC_PRIVATE "Libs.private: -l${VINTRA_CXX_RUNTIME} -ldl -lm")
endif()
install(EXPORT vintra-targets NAMESPACE vintra:: DESTINATION ${package_dir} COMPONENT development)
# The library needs nothing of a host, so its targets are the whole package.
file(WRITE ${PROJECT_BINARY_DIR}/vintra-config.cmake
  "include(\"\${CMAKE_CURRENT_LIST_DIR}/vintra-targets.cmake\")\n")
write_basic_package_version_file(${PROJECT_BINARY_DIR}/vintra-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/vintra-config.cmake ${PROJECT_BINARY_DIR}/vintra-config-version.cmake
  DESTINATION ${package_dir} COMPONENT development)

# A path below the prefix stays so when the tree is moved; any other is taken as it is. Where the .pc file itself lies
# elsewhere, the prefix cannot be told from its place.
function(pc_path variable directory)
  if(IS_ABSOLUTE ${directory})
    set(${variable} ${directory} PARENT_SCOPE)
  else()
    set(${variable} "\${prefix}/${directory}" PARENT_SCOPE)
  endif()
endfunction()
pc_path(VINTRA_PC_LIBDIR ${CMAKE_INSTALL_LIBDIR})
pc_path(VINTRA_PC_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR})
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(VINTRA_PC_PREFIX ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH to_prefix /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
  string(REGEX REPLACE "/$" "" VINTRA_PC_PREFIX "\${pcfiledir}/${to_prefix}")
endif()
configure_file(packaging/vintra.pc.in vintra.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/vintra.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

install(FILES vintra.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vintra COMPONENT development)
foreach(header Common/BaseTypes.h ConfigFileINI/ConfigFileINI.h FolderModule/FolderModule.h VintraModule/VintraModule.h)
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vintra/${folder} COMPONENT development)
endforeach()

install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development
  FILES_MATCHING PATTERN *.c PATTERN *.cpp PATTERN *.ini)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development FILES_MATCHING
  PATTERN *.md PATTERN *.svg PATTERN man EXCLUDE)
install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT development)
install(DIRECTORY integrations/ DESTINATION ${data_dir} COMPONENT tools)
