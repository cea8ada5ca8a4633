# What `cmake --install` puts in place: the three libraries, the headers, a CMake
# package (find_package(nx21Rtms), target nx21::Rtms) and a pkg-config file.

include(CMakePackageConfigHelpers)

install(TARGETS nx21Rbs nx21Rin nx21Rtms EXPORT nx21RtmsTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
file(GLOB headers CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/include/*.h" "${PROJECT_SOURCE_DIR}/sibling/*.h")
install(FILES ${headers} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/nx21)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/nx21Rtms)
install(EXPORT nx21RtmsTargets NAMESPACE nx21:: DESTINATION ${packageDir})
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/nx21RtmsConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/nx21RtmsConfig.cmake" INSTALL_DESTINATION ${packageDir})
# The compile and link options of the target make a consumer 32-bit too, so its own
# default word size does not matter.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/nx21RtmsConfigVersion.cmake"
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES "${PROJECT_BINARY_DIR}/nx21RtmsConfig.cmake" "${PROJECT_BINARY_DIR}/nx21RtmsConfigVersion.cmake"
        DESTINATION ${packageDir})

# The file finds the prefix from its own place, so that the installed tree can be moved.
file(RELATIVE_PATH pcToPrefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pcToPrefix "${pcToPrefix}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/nx21Rtms.pc.in" "${PROJECT_BINARY_DIR}/nx21Rtms.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/nx21Rtms.pc" DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
