# SPDX-License-Identifier: Apache-2.0
# Includes point one way: foundation <- raster <- effect <- text <- jni, and text <- scene <- tools. Nothing of the
# library reaches below platform/, tools/ or tests/ by path; the scene knows the desktop port by its paths. The
# platform is named in angle brackets, and only where it may be called.
cmake_minimum_required(VERSION 3.22)

set(below_foundation foundation)
set(below_raster foundation raster)
set(below_effect foundation raster effect)
set(below_text foundation raster effect text)
set(below_jni foundation raster effect text jni)
set(below_scene foundation raster effect text platform scene)
set(below_tools foundation raster effect text platform scene tools)
set(platform_names "^(android/asset_manager.*|unicode/.*|jni\\.h|hwui/.*|minikin/.*|Sk[A-Z].*)$")

set(faults "")
foreach(folder foundation raster effect text jni scene tools)
  file(GLOB_RECURSE files RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/${folder}/*.h
       ${SOURCE_DIR}/${folder}/*.inc ${SOURCE_DIR}/${folder}/*.cpp)
  foreach(file IN LISTS files)
    file(STRINGS ${SOURCE_DIR}/${file} lines REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS lines)
      if(line MATCHES "\"([^/\"]+)/[^\"]*\"")
        if(NOT CMAKE_MATCH_1 IN_LIST below_${folder})
          string(APPEND faults "  ${file}: ${line}\n")
        endif()
      elseif(line MATCHES "\"")
        string(APPEND faults "  ${file}: ${line} (start at the root of the repository)\n")
      elseif(line MATCHES "<([^>]+)>" AND CMAKE_MATCH_1 MATCHES "${platform_names}" AND NOT folder MATCHES "^(text|jni|scene|tools)$")
        string(APPEND faults "  ${file}: ${line} (the platform, from ${folder}/)\n")
      endif()
    endforeach()
  endforeach()
endforeach()
if(faults)
  message(FATAL_ERROR "Includes against the stream:\n${faults}")
endif()
