# `cmake --install` gives a host the DLL (or shared object), its import
# library, the public headers and a package that find_package(kticore) finds.
include(CMakePackageConfigHelpers)

set(kt_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/kticore)

install(TARGETS kticore EXPORT kticoreTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(DIRECTORY include/kticore DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT kticoreTargets NAMESPACE kticore:: DESTINATION ${kt_cmake_dir})

configure_package_config_file(cmake/kticoreConfig.cmake.in
    ${PROJECT_BINARY_DIR}/kticoreConfig.cmake
    INSTALL_DESTINATION ${kt_cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/kticoreConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/kticoreConfig.cmake
    ${PROJECT_BINARY_DIR}/kticoreConfigVersion.cmake
    DESTINATION ${kt_cmake_dir})
