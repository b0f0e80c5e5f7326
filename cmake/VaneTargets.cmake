# One function per kind of target, so that every folder's list stays a list of files.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()

# What every target of this project gets: the root of the tree as include folder, the warnings, and
# the sanitizers when they are asked for.
function(vane_configure target)
  target_include_directories(${target} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/VaneT312B>)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Woverloaded-virtual
    # g++ 12 takes the library's own `"text" + std::string` for overlapping copies.
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    $<$<BOOL:${VANE_WARNINGS_AS_ERRORS}>:-Werror>)
  if(VANE_SANITIZE)
    # The sanitizers' own code makes g++ see uninitialized values where there are none.
    target_compile_options(${target} PRIVATE
      $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
    target_compile_options(${target} PUBLIC $<BUILD_INTERFACE:-fsanitize=address,undefined>
      $<BUILD_INTERFACE:-fno-sanitize-recover=all> $<BUILD_INTERFACE:-fno-omit-frame-pointer>)
    target_link_options(${target} PUBLIC $<BUILD_INTERFACE:-fsanitize=address,undefined>)
  endif()
endfunction()

# What most sources of this project read first, read once. A source includes what it uses all the
# same: scripts/tidy reads it without this.
set(VANE_COMMON_HEADERS <algorithm> <chrono> <cstdint> <functional> <map> <memory> <optional> <ranges>
    <string> <string_view> <utility> <vector>)

# vane_library(name SOURCES a.cpp ... [LINK other ...]): a static library `vane_name`, exported as
# `VaneT312B::name`, in the file `libVaneT312B-name.a`. The linker keeps the arrows between the
# folders: a target sees what it links.
function(vane_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK;LINK_PRIVATE" ${ARGN})
  set(target vane_${name})
  add_library(${target} STATIC ${ARG_SOURCES})
  add_library(VaneT312B::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} OUTPUT_NAME VaneT312B-${name})
  target_compile_features(${target} PUBLIC cxx_std_20)
  vane_configure(${target})
  target_link_libraries(${target} PUBLIC ${ARG_LINK} PRIVATE ${ARG_LINK_PRIVATE})
endfunction()

# vane_program(name SOURCES a.cpp ... LINK library ...)
function(vane_program name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  vane_configure(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LINK})
endfunction()

# vane_test(name SOURCES a_test.cpp ... LINK library ...): one test program; each of its cases is a
# test of its own for the runner. With WINDOWS, its cases may have windows, which no screen shows.
function(vane_test name)
  cmake_parse_arguments(ARG "WINDOWS" "" "SOURCES;LINK;ENVIRONMENT" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  vane_configure(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gmock_main)
  # A case runs for milliseconds: to optimize its own code takes longer than that ever saves.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O0>)
  # The toolkit wants another kind of code, so that its tests can't share with the others.
  set(headers ${VANE_COMMON_HEADERS} <filesystem> <fstream> <sstream> <gmock/gmock.h>
      <gtest/gtest.h>)
  set(first VANE_FIRST_TEST)
  if(ARG_WINDOWS)
    target_sources(${name} PRIVATE qt/qt_main.cpp)
    target_link_libraries(${name} PRIVATE VaneT312B::qt Qt6::Test)
    list(APPEND headers <QApplication> <QTest>)
    set(first VANE_FIRST_WINDOWS_TEST)
  endif()
  get_property(maker GLOBAL PROPERTY ${first})
  if(maker)
    target_precompile_headers(${name} REUSE_FROM ${maker})
  else()
    target_precompile_headers(${name} PRIVATE ${headers})
    set_property(GLOBAL PROPERTY ${first} ${name})
  endif()
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 120 ENVIRONMENT "${ARG_ENVIRONMENT}")
  set_property(GLOBAL APPEND PROPERTY VANE_TEST_SOURCES ${ARG_SOURCES})
endfunction()

# Fails the configuration when a test file of this folder belongs to no test program; those of
# windows only where there are windows.
function(vane_check_all_tests_built)
  get_property(built GLOBAL PROPERTY VANE_TEST_SOURCES)
  file(GLOB_RECURSE found RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} CONFIGURE_DEPENDS *_test.cpp)
  if(NOT VANE_DESKTOP)
    list(FILTER found EXCLUDE REGEX "^qt/")
  endif()
  foreach(file IN LISTS found)
    if(NOT file IN_LIST built)
      message(FATAL_ERROR "tests/${file} belongs to no test program")
    endif()
  endforeach()
endfunction()
