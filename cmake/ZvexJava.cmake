# SPDX-License-Identifier: Apache-2.0
# The Java side of a desktop: zvex-kit.jar (com.orvane.*), zvex-android.jar (the android.* stand-ins), tests under JUnit 5.
# Skipped with a message where there is no Java compiler.
file(GLOB ZVEX_JDKS /usr/lib/jvm/java-17-openjdk-* /usr/lib/jvm/default-java)
find_program(ZVEX_JAVAC javac HINTS $ENV{JAVA_HOME} ${ZVEX_JDKS} PATH_SUFFIXES bin)
find_program(ZVEX_JAR jar HINTS $ENV{JAVA_HOME} ${ZVEX_JDKS} PATH_SUFFIXES bin)
find_program(ZVEX_JAVA java HINTS $ENV{JAVA_HOME} ${ZVEX_JDKS} PATH_SUFFIXES bin)
find_file(ZVEX_JUNIT_JAR junit-platform-console-standalone.jar HINTS /usr/share/java)
# org.json as Android has it, for the kit's styles; an application on a desktop puts it on its class path.
find_file(ZVEX_JSON_JAR com.android.json.jar HINTS /usr/share/java)
mark_as_advanced(ZVEX_JAVAC ZVEX_JAR ZVEX_JAVA ZVEX_JUNIT_JAR ZVEX_JSON_JAR)
if(NOT ZVEX_JAVAC OR NOT ZVEX_JAR OR NOT ZVEX_JAVA)
  message(STATUS "No JDK found: the Java kit is not built (set JAVA_HOME)")
  return()
endif()
if(NOT ZVEX_JSON_JAR)
  message(STATUS "No org.json found: the Java kit is not built (libandroid-json-java has it)")
  return()
endif()

set(ZVEX_COMPILE_JAVA ${ZVEX_JAVAC} -J-XX:TieredStopAtLevel=1 -encoding UTF-8)  # half of the time for a few classes
set(ZVEX_JAVA_DIR ${PROJECT_BINARY_DIR}/java)
set(ZVEX_KIT_JAR ${ZVEX_JAVA_DIR}/zvex-kit.jar)
set(ZVEX_ANDROID_JAR ${ZVEX_JAVA_DIR}/zvex-android.jar)

# zvex_add_jar(JAR jar SOURCES folders... RELEASE release [PATH jars...] [RESOURCES files of the tree...])
function(zvex_add_jar)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "JAR;RELEASE" "SOURCES;PATH;RESOURCES")
  set(sources)
  foreach(folder IN LISTS arg_SOURCES)
    file(GLOB_RECURSE found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${folder}/*.java)
    list(APPEND sources ${found})
  endforeach()
  set(resources)
  foreach(file IN LISTS arg_RESOURCES)
    list(APPEND resources -C ${PROJECT_SOURCE_DIR} ${file})
  endforeach()
  cmake_path(GET arg_JAR STEM name)
  set(classes ${ZVEX_JAVA_DIR}/${name})
  list(JOIN arg_PATH : path)
  add_custom_command(OUTPUT ${arg_JAR}
      COMMAND ${CMAKE_COMMAND} -E rm -rf ${classes}
      COMMAND ${ZVEX_COMPILE_JAVA} --release ${arg_RELEASE} -Xlint:all,-options,-classfile -Werror -d ${classes}
              "$<$<BOOL:${path}>:-cp;${path}>" ${sources}
      COMMAND ${ZVEX_JAR} --create --file ${arg_JAR} -C ${classes} . ${resources}
      DEPENDS ${sources} ${arg_PATH} ${arg_RESOURCES} COMMENT "Java: ${name}.jar" VERBATIM COMMAND_EXPAND_LISTS)
endfunction()

zvex_add_jar(JAR ${ZVEX_ANDROID_JAR} SOURCES platform/host/java RELEASE 17)
# Java 8, which every supported Android version understands. The example styles are the presets.
file(GLOB ZVEX_PRESET_FILES RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/examples/styles/*.json)
zvex_add_jar(JAR ${ZVEX_KIT_JAR} SOURCES kit/java kit/desktop RELEASE 8 PATH ${ZVEX_ANDROID_JAR} ${ZVEX_JSON_JAR}
             RESOURCES ${ZVEX_PRESET_FILES})
add_subdirectory(platform/host/jni)
# Maven's description, and the two libraries as a jar, which a class path can hold (android.host.NativeJar).
string(TOLOWER ${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR} ZVEX_PLATFORM)
set(ZVEX_NATIVES_CLASSIFIER natives-${ZVEX_PLATFORM})
set(ZVEX_NATIVES_NAME zvex-${ZVEX_NATIVES_CLASSIFIER}.jar)
set(ZVEX_NATIVES_JAR ${ZVEX_JAVA_DIR}/${ZVEX_NATIVES_NAME})
set(ZVEX_POM ${ZVEX_JAVA_DIR}/pom.xml)
configure_file(cmake/pom.xml.in ${ZVEX_POM} @ONLY)
set(folder ${ZVEX_JAVA_DIR}/natives/zvex/${ZVEX_PLATFORM})
add_custom_command(OUTPUT ${ZVEX_NATIVES_JAR}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
    COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:ZvEffect> $<TARGET_FILE:ZvHostJava> ${folder}
    COMMAND ${ZVEX_JAR} --create --file ${ZVEX_NATIVES_JAR} -C ${ZVEX_JAVA_DIR}/natives .
    DEPENDS ZvEffect ZvHostJava COMMENT "Java: ${ZVEX_NATIVES_NAME}" VERBATIM)
add_custom_target(zvex_java ALL DEPENDS ${ZVEX_ANDROID_JAR} ${ZVEX_KIT_JAR})
add_custom_target(zvex_java_natives ALL DEPENDS ${ZVEX_NATIVES_JAR})
# The two libraries for Debian's fonts, in java/desktop, for scripts/java-example and scripts/package.
add_library(ZvEffectDesktop SHARED EXCLUDE_FROM_ALL)
zvex_binding(ZvEffectDesktop /usr/share/fonts)
target_link_libraries(ZvEffectDesktop PRIVATE "$<LINK_LIBRARY:WHOLE_ARCHIVE,zvex>")
zvex_host_java(ZvHostJavaDesktop /usr/share/fonts)
set_target_properties(ZvEffectDesktop PROPERTIES OUTPUT_NAME ZvEffect)
set_target_properties(ZvHostJavaDesktop PROPERTIES OUTPUT_NAME ZvHostJava EXCLUDE_FROM_ALL ON)
set_target_properties(ZvEffectDesktop ZvHostJavaDesktop PROPERTIES LIBRARY_OUTPUT_DIRECTORY ${ZVEX_JAVA_DIR}/desktop)
add_custom_target(zvex_java_desktop DEPENDS zvex_java ZvEffectDesktop ZvHostJavaDesktop)

# Pages of the kit; a public name without a comment is an error.
find_program(ZVEX_JAVADOC javadoc HINTS $ENV{JAVA_HOME} ${ZVEX_JDKS} PATH_SUFFIXES bin)
mark_as_advanced(ZVEX_JAVADOC)
set(ZVEX_JAVADOC_COMMAND ${ZVEX_JAVADOC} -quiet -Werror -d ${ZVEX_JAVA_DIR}/javadoc -encoding UTF-8
    --source-path ${PROJECT_SOURCE_DIR}/kit/java:${PROJECT_SOURCE_DIR}/kit/desktop -cp ${ZVEX_ANDROID_JAR}:${ZVEX_JSON_JAR}
    -subpackages com.orvane)
add_custom_target(zvex_javadoc COMMAND ${ZVEX_JAVADOC_COMMAND} DEPENDS ${ZVEX_ANDROID_JAR} VERBATIM)

# zvex_add_java_test(NAME name SOURCES sources... [LIBRARY target] [ARGS JVM arguments...]): runs JUnit 5 classes as one test
# of ctest, in a JVM that checks every JNI call; any complaint fails the test. System properties: zvex.library is the path of
# the library (ZvEffect, or the target given), zvex.fonts the folder of its system fonts, and zvex.host.library the path of
# the library behind the android.* stand-ins, which uses the same folder.
function(zvex_add_java_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "NAME;LIBRARY" "SOURCES;ARGS")
  if(NOT arg_LIBRARY)
    set(arg_LIBRARY ZvEffect)
  endif()
  if(NOT ZVEX_JUNIT_JAR)
    message(STATUS "No JUnit 5 found: ${arg_NAME} is left out")
    return()
  endif()
  set(host_library ZvHostJava)
  get_target_property(font_dir ${arg_LIBRARY} ZVEX_FONT_DIR)
  if(NOT font_dir STREQUAL ZVEX_SYSTEM_FONT_DIR)
    set(host_library ZvHostJavaTest)  # the tests have one font folder
    if(NOT TARGET ZvHostJavaTest)
      zvex_host_java(ZvHostJavaTest "${font_dir}")
    endif()
  endif()
  list(TRANSFORM arg_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/ REGEX "^[^/]")
  set(classes ${CMAKE_CURRENT_BINARY_DIR}/${arg_NAME}.classes)
  set(path ${ZVEX_KIT_JAR}:${ZVEX_ANDROID_JAR}:${ZVEX_JSON_JAR}:${ZVEX_JUNIT_JAR})
  add_custom_command(OUTPUT ${classes}.stamp
      COMMAND ${CMAKE_COMMAND} -E rm -rf ${classes}
      COMMAND ${ZVEX_COMPILE_JAVA} --release 17 -Xlint:all,-processing -Werror -cp ${path} -d ${classes} ${arg_SOURCES}
      COMMAND ${CMAKE_COMMAND} -E touch ${classes}.stamp
      DEPENDS ${arg_SOURCES} ${ZVEX_KIT_JAR} ${ZVEX_ANDROID_JAR} COMMENT "Java: ${arg_NAME}" VERBATIM)
  add_custom_target(${arg_NAME} ALL DEPENDS ${classes}.stamp)
  add_dependencies(${arg_NAME} zvex_java ${host_library} ${arg_LIBRARY})
  add_test(NAME ${arg_NAME}
      COMMAND ${ZVEX_JAVA} -Xcheck:jni -ea -Dzvex.library=$<TARGET_FILE:${arg_LIBRARY}>
              -Dzvex.host.library=$<TARGET_FILE:${host_library}>
              -Dzvex.fonts=$<TARGET_PROPERTY:${arg_LIBRARY},ZVEX_FONT_DIR> ${arg_ARGS} -cp ${classes}:${path}
              org.junit.platform.console.ConsoleLauncher --scan-classpath ${classes} --disable-banner
              --disable-ansi-colors --details=tree --fail-if-no-tests)
  set_tests_properties(${arg_NAME} PROPERTIES TIMEOUT 300 LABELS quick
      FAIL_REGULAR_EXPRESSION "WARNING in native method;WARNING: JNI;FATAL ERROR")
endfunction()
