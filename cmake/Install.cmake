# Installs the kit, and with ZVAPIKIT_EMULATOR the emulator, for find_package and pkg-config. Nothing installed names
# the prefix, so the tree may be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/ZVApiKit)
file(RELATIVE_PATH ZVAPIKIT_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)

# A library of ours: its headers, its targets and, for pkg-config, what it is.
function(zvapikit_install target name component headers)
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name})
  install(
    TARGETS ${target}
    EXPORT ZVApiKit${component}Targets
    COMPONENT ${component}
    INCLUDES
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(DIRECTORY ${headers} TYPE INCLUDE COMPONENT ${component})
  install(
    EXPORT ZVApiKit${component}Targets
    NAMESPACE ZVApiKit::
    DESTINATION ${package_dir}
    COMPONENT ${component})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${target}.pc.in ${target}.pc @ONLY)
  install(
    FILES ${CMAKE_CURRENT_BINARY_DIR}/${target}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT ${component})
endfunction()

# A static library needs these of its host, linked as they are found. They are not private in pkg-config's sense: that
# is for programs linked statically as a whole, and would ask for everything libcurl was built with.
if(NOT BUILD_SHARED_LIBS)
  set(ZVAPIKIT_REQUIRES ", libcurl >= 7.88, openssl, simdjson, libsecret-1 >= 0.20")
  set(ZVAPIKIT_LIBS " -ldate-tz") # it has no .pc file
  set(ZVAPIKIT_EMULATOR_REQUIRES ", zlib")
endif()

zvapikit_install(zvapikit ZVApiKit Kit ${PROJECT_SOURCE_DIR}/include/)
if(ZVAPIKIT_EMULATOR)
  zvapikit_install(zvapikit_emulator Emulator Emulator ${PROJECT_SOURCE_DIR}/emulator/include/)
endif()
if(ZVAPIKIT_TOOLS)
  file(RELATIVE_PATH libraries /prefix/${CMAKE_INSTALL_BINDIR} /prefix/${CMAKE_INSTALL_LIBDIR})
  set_target_properties(zvkit PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
  install(TARGETS zvkit COMPONENT Tools)
endif()

if(BUILD_SHARED_LIBS)
  set(ZVAPIKIT_STATIC OFF)
else()
  set(ZVAPIKIT_STATIC ON)
endif()
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZVApiKitConfig.cmake.in ZVApiKitConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(ZVApiKitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES ${CMAKE_CURRENT_BINARY_DIR}/ZVApiKitConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZVApiKitConfigVersion.cmake
  DESTINATION ${package_dir}
  COMPONENT Kit)
