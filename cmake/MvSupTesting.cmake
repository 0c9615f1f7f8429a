# Test programs: GoogleTest from Debian's sources, one program per subsystem
# under tests/<subsystem>/, run through Wine by ctest. Tests are labelled
# "wine" (need Windows) or "host" (run on the build machine).

# Without a Wine that runs this architecture's programs, only the host tests
# (export table, imports, import libraries) are registered, and the test
# programs are not built: nothing could run them.
option(MVSUP_WINE_TESTS "Build and register the tests that run under Wine" ON)

if(MVSUP_WINE_TESTS)

set(gtest_disable_pthreads ON CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
include(GoogleTest)

file(GLOB MVSUP_TEST_COMMON_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/common/*.cpp)
add_library(mvsup_testing STATIC ${MVSUP_TEST_COMMON_SOURCES})
target_include_directories(mvsup_testing PUBLIC ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR}/src/exports ${CMAKE_SOURCE_DIR}/src)
target_link_libraries(mvsup_testing PUBLIC mvsup_build_flags GTest::gtest GTest::gmock ${MVSUP_SYSTEM_LIBS})

# mvsup_test_program(<subsystem> [DYNAMIC|INTERNAL])
#   DYNAMIC: the program loads the DLL itself (LoadLibrary) instead of linking
#   its import library, so that start-up can be tested after preparing the
#   registry.
#   INTERNAL: the program links the library's objects and tests internals
#   that no export reaches (it does not load the DLL).
function(mvsup_test_program subsystem)
  cmake_parse_arguments(ARG "DYNAMIC;INTERNAL" "" "" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${subsystem}/*.cpp)
  set(target test_${subsystem})
  add_executable(${target} ${sources})
  target_link_libraries(${target} PRIVATE mvsup_testing GTest::gtest_main)
  if(ARG_DYNAMIC)
    add_dependencies(${target} MvSup2u SDKSatellite_0407)
  elseif(ARG_INTERNAL)
    target_link_libraries(${target} PRIVATE mvsup_objects)
  else()
    target_link_libraries(${target} PRIVATE MvSup2u_client)
    add_dependencies(${target} SDKSatellite_0407)
  endif()
  # A subsystem may name a ctest fixture that prepares what its tests need
  # outside Wine (MVSUP_TEST_FIXTURES_<subsystem>).
  set(fixtures)
  if(DEFINED MVSUP_TEST_FIXTURES_${subsystem})
    set(fixtures FIXTURES_REQUIRED ${MVSUP_TEST_FIXTURES_${subsystem}})
  endif()
  gtest_discover_tests(${target}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 120
    TEST_PREFIX "${subsystem}."
    PROPERTIES LABELS wine TIMEOUT 300 RESOURCE_LOCK wine_prefix ${fixtures})
  add_test(NAME ${subsystem}.lists_tests
           COMMAND ${CMAKE_SOURCE_DIR}/cmake/check-lists-tests.sh ${CMAKE_CROSSCOMPILING_EMULATOR}
                   $<TARGET_FILE:${target}>)
  set_tests_properties(${subsystem}.lists_tests PROPERTIES LABELS wine RESOURCE_LOCK wine_prefix)
endfunction()

# Subsystems whose start-up behaviour is under test load the DLL themselves;
# the tracer's rules below the exports are tested on its objects.
set(MVSUP_DYNAMIC_TEST_PROGRAMS frame)
set(MVSUP_INTERNAL_TEST_PROGRAMS tracer)

include(${CMAKE_SOURCE_DIR}/cmake/StorageTesting.cmake)

file(GLOB test_dirs LIST_DIRECTORIES true ${CMAKE_SOURCE_DIR}/tests/*)
foreach(dir IN LISTS test_dirs)
  get_filename_component(name ${dir} NAME)
  if(NOT IS_DIRECTORY ${dir} OR name STREQUAL "common" OR name STREQUAL "fixtures" OR name STREQUAL "abi")
    continue()
  endif()
  file(GLOB has_sources CONFIGURE_DEPENDS ${dir}/*.cpp)
  if(NOT has_sources)
    continue()
  endif()
  if(name IN_LIST MVSUP_DYNAMIC_TEST_PROGRAMS)
    mvsup_test_program(${name} DYNAMIC)
  elseif(name IN_LIST MVSUP_INTERNAL_TEST_PROGRAMS)
    mvsup_test_program(${name} INTERNAL)
  else()
    mvsup_test_program(${name})
  endif()
endforeach()

# The local-time tests run once more in zones with daylight saving: Wine
# takes a process's zone from TZ when it starts (a Windows child never sees a
# TZ from its environment block), and the runner keeps a TZ it is given. A
# run that executes no test, or skips one, fails.
if(TARGET test_time)
  foreach(zone Europe/Berlin America/New_York)
    string(REPLACE "/" "_" zone_test time.zone_${zone})
    add_test(NAME ${zone_test}
             COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:test_time> --gtest_filter=LocalTimeZone.*)
    set_tests_properties(${zone_test} PROPERTIES ENVIRONMENT TZ=${zone} LABELS wine TIMEOUT 300
                         RESOURCE_LOCK wine_prefix
                         PASS_REGULAR_EXPRESSION "\\[  PASSED  \\] [1-9]"
                         FAIL_REGULAR_EXPRESSION "\\[  (FAILED|SKIPPED) +\\]")
  endforeach()
endif()

# The narrow text outputs once more under a double-byte ANSI code page
# (Japanese, 932). The suites AnsiCodePage932.* skip in the default run
# (1252); here a run that executes no test, or skips one, fails.
foreach(subsystem settings types)
  if(TARGET test_${subsystem})
    add_test(NAME ${subsystem}.ansi_code_page_932
             COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:test_${subsystem}> --gtest_filter=AnsiCodePage932.*)
    set_tests_properties(${subsystem}.ansi_code_page_932 PROPERTIES ENVIRONMENT MVSUP_LOCALE=ja_JP.UTF-8
                         LABELS wine TIMEOUT 300 RESOURCE_LOCK wine_prefix
                         PASS_REGULAR_EXPRESSION "\\[  PASSED  \\] [1-9]"
                         FAIL_REGULAR_EXPRESSION "\\[  (FAILED|SKIPPED) +\\]")
  endif()
endforeach()

# The every-export test calls each name of the .def through its declaration.
if(TARGET test_exports)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${MVSUP_DEF})
  file(STRINGS ${MVSUP_DEF} def_lines REGEX "^[ \t]+[A-Za-z_]")
  set(export_list "")
  foreach(line IN LISTS def_lines)
    string(STRIP "${line}" name)
    string(REGEX REPLACE "[ \t@].*" "" name "${name}")
    string(APPEND export_list "MVSUP_EXPORT(${name})\n")
  endforeach()
  file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/generated/export_list.inc CONTENT "${export_list}")
  target_include_directories(test_exports PRIVATE ${CMAKE_BINARY_DIR}/generated)
endif()

if(EXISTS ${CMAKE_SOURCE_DIR}/tests/fixtures/CMakeLists.txt)
  add_subdirectory(tests/fixtures)
endif()

endif()  # MVSUP_WINE_TESTS

# ---- The ABI: export table, imports, import libraries --------------------------

add_test(NAME abi.export_table
         COMMAND ${CMAKE_SOURCE_DIR}/tests/abi/check-exports.sh ${CMAKE_OBJDUMP} $<TARGET_FILE:MvSup2u> ${MVSUP_DEF})
add_test(NAME abi.tool_imports
         COMMAND ${CMAKE_SOURCE_DIR}/tests/abi/check-exports.sh ${CMAKE_OBJDUMP} $<TARGET_FILE:mvsup> - MvSup2u.dll)
set_tests_properties(abi.export_table abi.tool_imports PROPERTIES LABELS host)

# A plain C client, compiled as strict C against the umbrella header and
# linked against the MinGW import library.
set(client ${CMAKE_BINARY_DIR}/bin/abi_client_mingw.exe)
add_test(NAME abi.link_c_client_mingw
         COMMAND ${CMAKE_C_COMPILER} -std=c11 -Wall -Wextra -Werror -pedantic -DUNICODE -D_UNICODE
                 -I${CMAKE_SOURCE_DIR}/src/exports ${CMAKE_SOURCE_DIR}/tests/abi/client.c ${MVSUP_IMPLIB_MINGW}
                 -o ${client})
set_tests_properties(abi.link_c_client_mingw PROPERTIES LABELS host FIXTURES_SETUP c_client_mingw)
if(MVSUP_WINE_TESTS)
  add_test(NAME abi.run_c_client_mingw COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${client})
  set_tests_properties(abi.run_c_client_mingw PROPERTIES LABELS wine FIXTURES_REQUIRED c_client_mingw
                       RESOURCE_LOCK wine_prefix PASS_REGULAR_EXPRESSION "client ok")
endif()

# Clients built for the MSVC ABI and linked with lld-link against MvSup2u.lib
# (they are part of the build, so a failed link fails the build): the same C
# client, and a C++ caller that catches the value accessor's out-of-range
# error with its own runtime.
include(${CMAKE_SOURCE_DIR}/cmake/MsvcAbi.cmake)
mvsup_msvc_abi_client(abi_client_msvc SOURCES ${CMAKE_SOURCE_DIR}/tests/abi/client.c)
mvsup_msvc_abi_client(abi_out_of_range_client_msvc SOURCES ${CMAKE_SOURCE_DIR}/tests/abi/out_of_range_client.cpp)
if(MVSUP_WINE_TESTS)
  add_test(NAME abi.run_c_client_msvc COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${CMAKE_BINARY_DIR}/bin/abi_client_msvc.exe)
  add_test(NAME abi.msvc_caller_catches_out_of_range
           COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} ${CMAKE_BINARY_DIR}/bin/abi_out_of_range_client_msvc.exe)
  set_tests_properties(abi.run_c_client_msvc PROPERTIES PASS_REGULAR_EXPRESSION "client ok")
  set_tests_properties(abi.msvc_caller_catches_out_of_range PROPERTIES PASS_REGULAR_EXPRESSION "out_of_range client ok")
  set_tests_properties(abi.run_c_client_msvc abi.msvc_caller_catches_out_of_range PROPERTIES
                       LABELS wine RESOURCE_LOCK wine_prefix)
endif()
