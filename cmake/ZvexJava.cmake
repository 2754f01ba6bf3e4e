# SPDX-License-Identifier: Apache-2.0
# The Java side of a desktop: zvex-kit.jar (com.orvane.*), zvex-android.jar (the android.* stand-ins), tests under JUnit 5.
# Skipped with a message where there is no Java compiler.
file(GLOB ZVEX_JDKS /usr/lib/jvm/java-17-openjdk-* /usr/lib/jvm/default-java)
find_program(ZVEX_JAVAC javac HINTS $ENV{JAVA_HOME} ${ZVEX_JDKS} PATH_SUFFIXES bin)
find_program(ZVEX_JAR jar HINTS $ENV{JAVA_HOME} ${ZVEX_JDKS} PATH_SUFFIXES bin)
find_program(ZVEX_JAVA java HINTS $ENV{JAVA_HOME} ${ZVEX_JDKS} PATH_SUFFIXES bin)
find_file(ZVEX_JUNIT_JAR junit-platform-console-standalone.jar HINTS /usr/share/java)
mark_as_advanced(ZVEX_JAVAC ZVEX_JAR ZVEX_JAVA ZVEX_JUNIT_JAR)
if(NOT ZVEX_JAVAC OR NOT ZVEX_JAR OR NOT ZVEX_JAVA)
  message(STATUS "No JDK found: the Java kit is not built (set JAVA_HOME)")
  return()
endif()

set(ZVEX_JAVA_DIR ${PROJECT_BINARY_DIR}/java)
set(ZVEX_KIT_JAR ${ZVEX_JAVA_DIR}/zvex-kit.jar)
set(ZVEX_ANDROID_JAR ${ZVEX_JAVA_DIR}/zvex-android.jar)

# zvex_add_jar(JAR SOURCE_FOLDER RELEASE [jars it is compiled against...])
function(zvex_add_jar jar folder release)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${folder}/*.java)
  cmake_path(GET jar STEM name)
  set(classes ${ZVEX_JAVA_DIR}/${name})
  add_custom_command(OUTPUT ${jar}
      COMMAND ${CMAKE_COMMAND} -E rm -rf ${classes}
      COMMAND ${ZVEX_JAVAC} --release ${release} -encoding UTF-8 -Xlint:all,-options,-classfile -Werror -d ${classes}
              "$<$<BOOL:${ARGN}>:-cp;$<JOIN:${ARGN},:>>" ${sources}
      COMMAND ${ZVEX_JAR} --create --file ${jar} -C ${classes} .
      DEPENDS ${sources} ${ARGN} COMMENT "Java: ${name}.jar" VERBATIM COMMAND_EXPAND_LISTS)
endfunction()

zvex_add_jar(${ZVEX_ANDROID_JAR} ${PROJECT_SOURCE_DIR}/platform/host/java 17)
# Java 8, which every supported Android version understands.
zvex_add_jar(${ZVEX_KIT_JAR} ${PROJECT_SOURCE_DIR}/kit/java 8 ${ZVEX_ANDROID_JAR})
add_subdirectory(platform/host/jni)
add_custom_target(zvex_java ALL DEPENDS ${ZVEX_ANDROID_JAR} ${ZVEX_KIT_JAR})

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
  set(path ${ZVEX_KIT_JAR}:${ZVEX_ANDROID_JAR}:${ZVEX_JUNIT_JAR})
  add_custom_command(OUTPUT ${classes}.stamp
      COMMAND ${CMAKE_COMMAND} -E rm -rf ${classes}
      COMMAND ${ZVEX_JAVAC} --release 17 -encoding UTF-8 -Xlint:all,-processing -Werror -cp ${path} -d ${classes} ${arg_SOURCES}
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
