# SPDX-License-Identifier: Apache-2.0
# cmake --install: the library, its public headers under their tree names, find_package(Zvex) and pkg-config, all relative to
# the prefix, so that the installed folder may be moved.
include(CMakePackageConfigHelpers)

install(TARGETS zvex EXPORT ZvexTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(EXPORT ZvexTargets NAMESPACE Zvex:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zvex)
if(TARGET zvex_scene)
  install(TARGETS zvex_scene EXPORT ZvexSceneTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(EXPORT ZvexSceneTargets NAMESPACE Zvex:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zvex)
endif()

# Public headers are installed, and documented by scripts/docs.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS cmake/public-headers.txt)
file(STRINGS cmake/public-headers.txt headers)
foreach(header IN LISTS headers)
  if(header MATCHES "^scene/" AND NOT TARGET zvex_scene)
    continue()
  endif()
  cmake_path(GET header PARENT_PATH folder)
  install(FILES ${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zvex/${folder})
endforeach()

configure_package_config_file(cmake/ZvexConfig.cmake.in ${CMAKE_CURRENT_BINARY_DIR}/ZvexConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zvex)
write_basic_package_version_file(${CMAKE_CURRENT_BINARY_DIR}/ZvexConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/ZvexConfig.cmake ${CMAKE_CURRENT_BINARY_DIR}/ZvexConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zvex)

# The prefix relative to the folder of zvex.pc.
file(RELATIVE_PATH ZVEX_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
cmake_path(SET ZVEX_PC_PREFIX NORMALIZE "${ZVEX_PC_PREFIX}")
set(ZVEX_PC_REQUIRES Requires)
if(BUILD_SHARED_LIBS)
  set(ZVEX_PC_REQUIRES Requires.private)
endif()
set(ZVEX_PC_DEFINES "")
if(ZVEX_DEBUG_LOG)
  set(ZVEX_PC_DEFINES " -DZVEX_DEBUG_LOG=1")
endif()
configure_file(cmake/zvex.pc.in ${CMAKE_CURRENT_BINARY_DIR}/zvex.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/zvex.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(ZVEX_BUILD_TOOLS)
  if(BUILD_SHARED_LIBS)
    file(RELATIVE_PATH library_folder /${CMAKE_INSTALL_BINDIR} /${CMAKE_INSTALL_LIBDIR})
    set_target_properties(zvtext PROPERTIES INSTALL_RPATH "$ORIGIN/${library_folder}")
  endif()
  install(TARGETS zvtext RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES docs/style.schema.json DESTINATION ${CMAKE_INSTALL_DATADIR}/zvex)
  install(DIRECTORY examples/styles DESTINATION ${CMAKE_INSTALL_DATADIR}/zvex)  # the presets, to start from
  if(TARGET zvtext_pages)
    set(made ${CMAKE_CURRENT_BINARY_DIR}/tools/zvtext)
    set(data ${CMAKE_INSTALL_DATADIR})
    install(FILES ${made}/zvtext.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
    install(FILES ${made}/zvtext.bash DESTINATION ${data}/bash-completion/completions RENAME zvtext)
  endif()
endif()
if(TARGET zvex_java)
  install(TARGETS ZvEffect ZvHostJava LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
  install(FILES ${ZVEX_KIT_JAR} ${ZVEX_ANDROID_JAR} ${ZVEX_NATIVES_JAR} ${ZVEX_POM} DESTINATION ${CMAKE_INSTALL_DATADIR}/java)
endif()
