# What a client developer gets: the shipped files (the DLL stripped, with its
# DWARF debug information in a file beside it; satellites; the tool), the
# install tree with a CMake package and a pkg-config file, and one release
# archive per architecture that is byte for byte the same when rebuilt from
# the same commit, in any build directory.

find_package(Python3 REQUIRED COMPONENTS Interpreter)

# ---- Path-independent objects, debug information for the library -------------

# Build and source paths never reach a shipped file: __FILE__ and the DWARF
# paths of the shipped targets are written relative to the source folder
# ("./src/...") and the build folder ("." is also each unit's compilation
# folder). GCC tries the last matching map first, so the build folder (often
# inside the source folder) comes after the source folder; no trailing slash,
# or the compilation folder itself would not match. ccache with a base
# folder hands the compiler relative source paths ("../../src/..."): the
# source folder as seen from the build folder is mapped too.
file(RELATIVE_PATH mvsup_source_from_build ${CMAKE_BINARY_DIR} ${CMAKE_SOURCE_DIR})
string(REGEX REPLACE "/$" "" mvsup_source_from_build "${mvsup_source_from_build}")
set(MVSUP_PATH_MAPS "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=." "-ffile-prefix-map=${CMAKE_BINARY_DIR}=.")
if(mvsup_source_from_build AND NOT IS_ABSOLUTE "${mvsup_source_from_build}")
  list(APPEND MVSUP_PATH_MAPS "-ffile-prefix-map=${mvsup_source_from_build}=.")
endif()
target_compile_options(mvsup_objects PRIVATE ${MVSUP_PATH_MAPS})
target_compile_options(mvsup PRIVATE ${MVSUP_PATH_MAPS})
# The library's objects carry DWARF; the shipped DLL is stripped and points
# at the debug file with a debug link.
target_compile_options(mvsup_objects PRIVATE -g)

# ---- Shipped copies: stripped, in dist/ ----------------------------------------

set(MVSUP_DIST ${CMAKE_BINARY_DIR}/dist)
# binutils stamps a PE file it rewrites with the time unless told otherwise;
# 0 is what the linker writes (--no-insert-timestamp).
set(MVSUP_BINUTILS_ENV ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0)

# The DLL: DWARF into MvSup2u.dll.debug, a stripped copy that names it.
add_custom_command(
  OUTPUT ${MVSUP_DIST}/MvSup2u.dll ${MVSUP_DIST}/MvSup2u.dll.debug
  COMMAND ${CMAKE_COMMAND} -E make_directory ${MVSUP_DIST}
  COMMAND ${MVSUP_BINUTILS_ENV} ${CMAKE_OBJCOPY} --only-keep-debug $<TARGET_FILE:MvSup2u> MvSup2u.dll.debug
  COMMAND ${MVSUP_BINUTILS_ENV} ${CMAKE_STRIP} --strip-all -o MvSup2u.dll $<TARGET_FILE:MvSup2u>
  COMMAND ${MVSUP_BINUTILS_ENV} ${CMAKE_OBJCOPY} --add-gnu-debuglink=MvSup2u.dll.debug MvSup2u.dll
  DEPENDS MvSup2u
  WORKING_DIRECTORY ${MVSUP_DIST}
  COMMENT "Splitting the debug information off MvSup2u.dll"
  VERBATIM)
set(MVSUP_DIST_FILES ${MVSUP_DIST}/MvSup2u.dll ${MVSUP_DIST}/MvSup2u.dll.debug)

# mvsup_dist_stripped(<target> <folder below dist>): a stripped copy.
function(mvsup_dist_stripped target folder)
  get_target_property(output_name ${target} OUTPUT_NAME)
  if(NOT output_name)
    set(output_name ${target})
  endif()
  get_target_property(suffix ${target} SUFFIX)
  if(NOT suffix)
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
      set(suffix .exe)
    else()
      set(suffix .dll)
    endif()
  endif()
  set(dir ${MVSUP_DIST})
  if(folder)
    string(APPEND dir /${folder})
  endif()
  set(out ${dir}/${output_name}${suffix})
  add_custom_command(
    OUTPUT ${out}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${dir}
    COMMAND ${MVSUP_BINUTILS_ENV} ${CMAKE_STRIP} --strip-all -o ${out} $<TARGET_FILE:${target}>
    DEPENDS ${target}
    VERBATIM)
  set(MVSUP_DIST_FILES ${MVSUP_DIST_FILES} ${out} PARENT_SCOPE)
endfunction()

mvsup_dist_stripped(mvsup "")
# Satellites: every target SDKSatellite_<language folder>.
get_property(mvsup_targets DIRECTORY ${CMAKE_SOURCE_DIR} PROPERTY BUILDSYSTEM_TARGETS)
set(MVSUP_SATELLITE_FOLDERS "")
foreach(target IN LISTS mvsup_targets)
  if(target MATCHES "^[A-Za-z]+Satellite_([0-9A-Fa-f]+)$")
    mvsup_dist_stripped(${target} ${CMAKE_MATCH_1})
    list(APPEND MVSUP_SATELLITE_FOLDERS ${CMAKE_MATCH_1})
  endif()
endforeach()
list(REMOVE_DUPLICATES MVSUP_SATELLITE_FOLDERS)

add_custom_target(MvSup2u_dist ALL DEPENDS ${MVSUP_DIST_FILES})

# ---- Install tree ------------------------------------------------------------
#   bin/      MvSup2u.dll (+ .debug), mvsup.exe, <language>/<component>Satellite.dll
#   include/  the public headers
#   lib/      libMvSup2u.dll.a (MinGW), MvSup2u.lib (MSVC), cmake/MvSup2u/, pkgconfig/
#   share/    the VBA module and the .NET declarations, README and licence

install(FILES ${MVSUP_DIST}/MvSup2u.dll ${MVSUP_DIST}/MvSup2u.dll.debug ${MVSUP_DIST}/mvsup.exe DESTINATION bin)
foreach(folder IN LISTS MVSUP_SATELLITE_FOLDERS)
  install(DIRECTORY ${MVSUP_DIST}/${folder}/ DESTINATION bin/${folder} FILES_MATCHING PATTERN "*.dll")
endforeach()
file(GLOB MVSUP_PUBLIC_HEADERS CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/exports/*.h)
install(FILES ${MVSUP_PUBLIC_HEADERS} DESTINATION include)
install(FILES ${MVSUP_IMPLIB_MINGW} ${MVSUP_IMPLIB_MSVC} DESTINATION lib)

include(CMakePackageConfigHelpers)
set(MVSUP_PACKAGE_DIR ${CMAKE_BINARY_DIR}/package-config)
configure_file(${CMAKE_SOURCE_DIR}/cmake/MvSup2uConfig.cmake.in ${MVSUP_PACKAGE_DIR}/MvSup2uConfig.cmake @ONLY)
# Same major version; the helper also refuses a package of the other
# architecture (pointer size).
write_basic_package_version_file(${MVSUP_PACKAGE_DIR}/MvSup2uConfigVersion.cmake
                                 VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
configure_file(${CMAKE_SOURCE_DIR}/cmake/MvSup2u.pc.in ${MVSUP_PACKAGE_DIR}/MvSup2u.pc @ONLY)
install(FILES ${MVSUP_PACKAGE_DIR}/MvSup2uConfig.cmake ${MVSUP_PACKAGE_DIR}/MvSup2uConfigVersion.cmake
        DESTINATION lib/cmake/MvSup2u)
install(FILES ${MVSUP_PACKAGE_DIR}/MvSup2u.pc DESTINATION lib/pkgconfig)

install(FILES ${CMAKE_SOURCE_DIR}/bindings/vba/MvSup2u.bas DESTINATION share/MvSup2u/vba)
install(FILES ${CMAKE_SOURCE_DIR}/bindings/dotnet/NativeMethods.cs DESTINATION share/MvSup2u/dotnet)
install(FILES ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/LICENSE.txt DESTINATION share/doc/MvSup2u)

# ---- Release archive -------------------------------------------------------------
# MvSup2u-<version>-<arch>.zip: the install tree, with the README and the
# licence also at its top. Entries are sorted and dated by the last commit.

set(MVSUP_ARCHIVE_NAME MvSup2u-${PROJECT_VERSION}-${CMAKE_SYSTEM_PROCESSOR})
set(MVSUP_ARCHIVE ${CMAKE_BINARY_DIR}/${MVSUP_ARCHIVE_NAME}.zip)
set(MVSUP_ARCHIVE_STAGE ${CMAKE_BINARY_DIR}/archive-stage)
add_custom_target(release_archive
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${MVSUP_ARCHIVE_STAGE}
  COMMAND ${CMAKE_COMMAND} --install ${CMAKE_BINARY_DIR} --prefix ${MVSUP_ARCHIVE_STAGE}/${MVSUP_ARCHIVE_NAME}
  COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_SOURCE_DIR}/README.md ${CMAKE_SOURCE_DIR}/LICENSE.txt
          ${MVSUP_ARCHIVE_STAGE}/${MVSUP_ARCHIVE_NAME}
  COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/cmake/make-archive.py
          --source ${CMAKE_SOURCE_DIR} ${MVSUP_ARCHIVE_STAGE} ${MVSUP_ARCHIVE_NAME} ${MVSUP_ARCHIVE}
  DEPENDS MvSup2u_dist MvSup2u_importlibs
  BYPRODUCTS ${MVSUP_ARCHIVE}
  COMMENT "Writing ${MVSUP_ARCHIVE_NAME}.zip"
  VERBATIM)

# ---- Reference documentation -------------------------------------------------------
# Doxygen over every header in src/exports, one page per family header.
# Warnings (an undocumented export among them) fail the run.

# The test builds need Doxygen (scripts/setup.sh installs it).
if(MVSUP_BUILD_TESTS)
  find_program(MVSUP_DOXYGEN doxygen REQUIRED)
else()
  find_program(MVSUP_DOXYGEN doxygen)
endif()
if(MVSUP_DOXYGEN)
  set(MVSUP_DOCS_DIR ${CMAKE_BINARY_DIR}/reference)
  add_custom_target(reference_docs
    COMMAND ${CMAKE_SOURCE_DIR}/docs/make-reference.sh ${MVSUP_DOXYGEN} ${CMAKE_SOURCE_DIR} ${MVSUP_DOCS_DIR}
    COMMENT "Generating the reference documentation in ${MVSUP_DOCS_DIR}"
    VERBATIM)
endif()

# ---- Tests ---------------------------------------------------------------------------

if(NOT MVSUP_BUILD_TESTS)
  return()
endif()

# The toolchain file again, for the builds that the tests make; a relative
# path names a file in the build or else the source folder.
set(MVSUP_TOOLCHAIN_FILE ${CMAKE_TOOLCHAIN_FILE})
if(NOT IS_ABSOLUTE "${MVSUP_TOOLCHAIN_FILE}")
  if(EXISTS ${CMAKE_BINARY_DIR}/${MVSUP_TOOLCHAIN_FILE})
    set(MVSUP_TOOLCHAIN_FILE ${CMAKE_BINARY_DIR}/${MVSUP_TOOLCHAIN_FILE})
  else()
    set(MVSUP_TOOLCHAIN_FILE ${CMAKE_SOURCE_DIR}/${MVSUP_TOOLCHAIN_FILE})
  endif()
endif()

# The byte layouts and stack sizes that callers in other languages rely on,
# as the compiler sees them (read back from the object's symbol sizes).
add_library(mvsup_abi_facts OBJECT ${CMAKE_SOURCE_DIR}/tests/callers/abi_facts.c)
target_include_directories(mvsup_abi_facts PRIVATE ${CMAKE_SOURCE_DIR}/src/exports)
target_link_libraries(mvsup_abi_facts PRIVATE mvsup_build_flags)
if(MVSUP_X86)
  set(MVSUP_DECORATED_DEF ${MVSUP_LINK_DEF})
else()
  set(MVSUP_DECORATED_DEF -)
endif()
add_test(NAME callers.declarations
         COMMAND ${Python3_EXECUTABLE} ${CMAKE_SOURCE_DIR}/tests/callers/check_callers.py
                 --arch ${CMAKE_SYSTEM_PROCESSOR} --headers ${CMAKE_SOURCE_DIR}/src/exports
                 --dll $<TARGET_FILE:MvSup2u> --objdump ${CMAKE_OBJDUMP} --nm ${CMAKE_NM}
                 --facts $<TARGET_OBJECTS:mvsup_abi_facts> --decorated-def ${MVSUP_DECORATED_DEF}
                 --vba ${CMAKE_SOURCE_DIR}/bindings/vba/MvSup2u.bas
                 --csharp ${CMAKE_SOURCE_DIR}/bindings/dotnet/NativeMethods.cs)
set_tests_properties(callers.declarations PROPERTIES LABELS host)
# The .NET declarations compile (with C#'s own rules: keywords, attributes)
# together with a file that uses them as the README does. The same for both
# architectures: built once, with the 64-bit tests.
if(NOT MVSUP_X86)
  find_program(MVSUP_CSHARP_COMPILER mcs REQUIRED)
  add_test(NAME callers.dotnet_compiles
           COMMAND ${MVSUP_CSHARP_COMPILER} -warnaserror -out:${CMAKE_BINARY_DIR}/callers-dotnet.exe
                   ${CMAKE_SOURCE_DIR}/bindings/dotnet/NativeMethods.cs
                   ${CMAKE_SOURCE_DIR}/tests/callers/DeclarationsInUse.cs)
  set_tests_properties(callers.dotnet_compiles PROPERTIES LABELS host)
endif()

# A consumer project built against the installed tree, by find_package and
# by pkg-config, given nothing but the install prefix, then run.
if(MVSUP_WINE_TESTS)
add_test(NAME package.consumer
         COMMAND ${CMAKE_SOURCE_DIR}/tests/package/check-consumer.sh
                 ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR} ${MVSUP_TOOLCHAIN_FILE} ${CMAKE_C_COMPILER}
                 ${PROJECT_VERSION} ${CMAKE_BINARY_DIR}/consumer-check ${CMAKE_CROSSCOMPILING_EMULATOR})
set_tests_properties(package.consumer PROPERTIES LABELS wine RESOURCE_LOCK wine_prefix)
endif()

# The release archive built a second time from scratch in another build
# folder must be byte for byte the same.
add_test(NAME package.reproducible
         COMMAND ${CMAKE_SOURCE_DIR}/tests/package/check-reproducible.sh
                 ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR} ${MVSUP_TOOLCHAIN_FILE} ${CMAKE_GENERATOR}
                 ${CMAKE_BUILD_TYPE} ${CMAKE_BINARY_DIR}/reproduce/second-build ${MVSUP_ARCHIVE_NAME}.zip)
set_tests_properties(package.reproducible PROPERTIES LABELS host TIMEOUT 1800)

# The reference documentation is the same for both architectures: built
# once, with the 64-bit tests.
if(NOT MVSUP_X86)
  add_test(NAME docs.reference
           COMMAND ${CMAKE_SOURCE_DIR}/docs/make-reference.sh ${MVSUP_DOXYGEN} ${CMAKE_SOURCE_DIR}
                   ${CMAKE_BINARY_DIR}/reference-check --check ${MVSUP_DEF})
  set_tests_properties(docs.reference PROPERTIES LABELS host)
endif()
