# Lets programs find an installed library through CMake and pkg-config.
include(CMakePackageConfigHelpers)

# vantorel_install_package(NAME COMPONENT): installs the CMake package NAME, which holds the targets of the export set
# NAME, and the pkg-config file. The current folder must contain NAMEConfig.cmake.in and NAME.pc.in. The installed tree
# can be moved.
function(vantorel_install_package name component)
  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${name})
  install(EXPORT ${name} FILE ${name}Targets.cmake NAMESPACE vantorel:: DESTINATION ${package_dir}
          COMPONENT ${component})
  configure_package_config_file(${name}Config.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/${name}Config.cmake
                                INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
  write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/${name}ConfigVersion.cmake
                                   COMPATIBILITY SameMajorVersion)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}Config.cmake ${CMAKE_CURRENT_BINARY_DIR}/${name}ConfigVersion.cmake
          DESTINATION ${package_dir} COMPONENT ${component})

  # The pkg-config file gives the prefix relative to its own folder.
  if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
    set(pc_prefix ${CMAKE_INSTALL_PREFIX})
  else()
    string(REGEX REPLACE "[^/]+" ".." pc_prefix ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
    set(pc_prefix "\${pcfiledir}/${pc_prefix}")
  endif()
  cmake_path(APPEND pc_libdir "\${prefix}" ${CMAKE_INSTALL_LIBDIR})
  cmake_path(APPEND pc_includedir "\${prefix}" ${CMAKE_INSTALL_INCLUDEDIR} vantorel)
  configure_file(${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
          COMPONENT ${component})
endfunction()
