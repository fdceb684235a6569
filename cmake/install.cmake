# The package a host takes: the DLL and its import library, the public headers under
# include/velhal (internal headers stay out), the product-adapter files beside the DLL,
# halinfo, and a CMake config so that find_package(VelHal CONFIG) and VelHal::VelHal work.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
include(cmake/public_headers.cmake)

add_library(VelHal::VelHal ALIAS VelHal)
target_include_directories(VelHal INTERFACE
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/velhal>
  $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)

install(TARGETS VelHal EXPORT VelHalTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(header ${VELHAL_PUBLIC_HEADERS})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velhal/${folder})
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/generated/hal/velhal_version.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/velhal/hal)
install(DIRECTORY config/product_adapter DESTINATION ${CMAKE_INSTALL_BINDIR}/config)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/velhal)
if(VELHAL_DEBUG_FILE)
  install(FILES ${VELHAL_DEBUG_FILE} DESTINATION ${CMAKE_INSTALL_BINDIR} OPTIONAL)
endif()
if(TARGET halinfo)
  install(TARGETS halinfo RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT VelHalTargets NAMESPACE VelHal:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VelHal)
configure_package_config_file(cmake/VelHalConfig.cmake.in
  ${CMAKE_CURRENT_BINARY_DIR}/VelHalConfig.cmake
  INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VelHal)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/VelHalConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/VelHalConfig.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/VelHalConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/VelHal)
