# SPDX-License-Identifier: Apache-2.0
# cmake --install: the static library, its headers under their tree names, find_package(Zvex) and pkg-config.
include(CMakePackageConfigHelpers)

install(TARGETS zvex EXPORT ZvexTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT ZvexTargets NAMESPACE Zvex:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zvex)
foreach(folder foundation raster effect text platform/host)
  install(DIRECTORY ${folder}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zvex/${folder}
          FILES_MATCHING PATTERN "*.h" PATTERN "java" EXCLUDE PATTERN "jni" EXCLUDE)
endforeach()

configure_package_config_file(cmake/ZvexConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/ZvexConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zvex)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZvexConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZvexConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZvexConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zvex)

configure_file(cmake/zvex.pc.in ${CMAKE_CURRENT_BINARY_DIR}/zvex.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zvex.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
if(ZVEX_BUILD_TOOLS)
  install(TARGETS zvtext RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()
if(TARGET zvex_java)
  install(TARGETS ZvEffect ZvHostJava LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES ${ZVEX_KIT_JAR} ${ZVEX_ANDROID_JAR} DESTINATION ${CMAKE_INSTALL_DATADIR}/java)
endif()
