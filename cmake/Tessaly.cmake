# Helpers that keep every subsystem library and test target built the same way.
include_guard(GLOBAL)

set(TESSALY_WARNINGS -Wall -Wextra -Wpedantic -Wshadow=local -Wnon-virtual-dtor -Wno-missing-field-initializers)

function(tessaly_harden target)
  target_compile_options(${target} PRIVATE ${TESSALY_WARNINGS})
  if(TESSALY_SANITIZE)
    target_compile_options(${target} PRIVATE -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    target_link_options(${target} PRIVATE -fsanitize=address,undefined)
  endif()
endfunction()

# tessaly_add_library(name SOURCES ... [DEPENDS ...])
# A static library for one subsystem folder; its folder's parent is the include root, so code
# includes "config/clsPropertiesXML.h".
function(tessaly_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "tessaly_add_library(${name}): unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS})
  tessaly_harden(${name})
endfunction()

# tessaly_add_executable(name SOURCES ... [DEPENDS ...])
function(tessaly_add_executable name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS" ${ARGN})
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "tessaly_add_executable(${name}): unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_DEPENDS})
  tessaly_harden(${name})
endfunction()

# tessaly_add_test(name SOURCES ... [DEPENDS ...])
# A GoogleTest executable with the shared test main (QApplication on the offscreen platform,
# a fresh TESSALY_HOME per process, scripted dialogs). Each TEST is its own CTest case.
function(tessaly_add_test name)
  cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;DEPENDS" ${ARGN})
  if(ARG_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "tessaly_add_test(${name}): unknown arguments ${ARG_UNPARSED_ARGUMENTS}")
  endif()
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tessaly_testsupport ${ARG_DEPENDS})
  tessaly_harden(${name})
  add_dependencies(${name} tessaly_data)
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    PROPERTIES
      TIMEOUT ${ARG_TIMEOUT}
      ENVIRONMENT "QT_QPA_PLATFORM=offscreen;SDL_AUDIODRIVER=dummy;ASAN_OPTIONS=detect_leaks=0;UBSAN_OPTIONS=print_stacktrace=1;TESSALY_TEST_BIN=${CMAKE_BINARY_DIR}/bin")
endfunction()
