# SPDX-License-Identifier: Apache-2.0
# What is installed is hardened, as read off the files: all addresses resolved at start, the table of them read-only
# afterwards, a stack protector, checked calls of the C library.
cmake_minimum_required(VERSION 3.22)

set(faults "")
foreach(binary IN LISTS BINARIES)
  execute_process(COMMAND ${READELF} -W --dynamic --segments --dyn-syms ${binary} OUTPUT_VARIABLE read COMMAND_ERROR_IS_FATAL ANY)
  foreach(mark "BIND_NOW|FLAGS_1[^\n]*NOW" GNU_RELRO "UND __stack_chk_fail" "UND __[a-z]+_chk@")
    if(NOT read MATCHES "${mark}")
      string(APPEND faults "  ${binary}: ${mark}\n")
    endif()
  endforeach()
endforeach()
if(faults)
  message(FATAL_ERROR "Not found in the binaries:\n${faults}")
endif()
list(LENGTH BINARIES count)
if(count EQUAL 0)
  message(FATAL_ERROR "No binary to read")
endif()
