# Test clients built the way callers with Microsoft's toolchain build theirs:
# clang with a *-windows-msvc target, linked by lld-link against MvSup2u.lib.
# No Microsoft files are involved: the Windows and C runtime headers are
# Wine's (Debian's libwine-dev), and the C and C++ runtimes the clients call
# are the Wine DLLs they run with (ucrtbase, vcruntime140, kernel32), reached
# through import libraries made here from the definitions in cmake/msvc-abi/.
#
#   mvsup_msvc_abi_client(<name> SOURCES <source>...)
#     builds bin/<name>.exe (target <name>, part of the default build).

find_program(MVSUP_CLANG NAMES clang clang-16 clang-15 clang-14 REQUIRED)
find_program(MVSUP_LLD_LINK NAMES lld-link lld-link-16 lld-link-15 lld-link-14 REQUIRED)
find_path(MVSUP_WINE_INCLUDE_DIR windows/windows.h PATHS /usr/include/wine/wine NO_DEFAULT_PATH
          NO_CMAKE_FIND_ROOT_PATH REQUIRED)

set(MVSUP_MSVC_ABI_DIR ${CMAKE_BINARY_DIR}/msvc-abi)
if(MVSUP_X86)
  set(MVSUP_MSVC_MACHINE x86)
else()
  set(MVSUP_MSVC_MACHINE x64)
endif()

# Import libraries of the runtime DLLs. The definitions carry the i686
# stdcall decorations: on i686 the library's symbols keep them and -k drops
# them from the imported names; the x86_64 definitions are the same lists
# without them.
set(MVSUP_MSVC_RUNTIME_LIBS)
foreach(dll kernel32 vcruntime140 ucrtbase)
  set(def ${CMAKE_SOURCE_DIR}/cmake/msvc-abi/${dll}.def)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${def})
  if(MVSUP_X86)
    set(kill_at -k)
  else()
    file(READ ${def} content)
    string(REGEX REPLACE "@[0-9]+\n" "\n" content "${content}")
    file(CONFIGURE OUTPUT ${MVSUP_MSVC_ABI_DIR}/${dll}.def CONTENT "${content}" @ONLY)
    set(def ${MVSUP_MSVC_ABI_DIR}/${dll}.def)
    set(kill_at)
  endif()
  set(lib ${MVSUP_MSVC_ABI_DIR}/${dll}.lib)
  add_custom_command(
    OUTPUT ${lib}
    COMMAND ${MVSUP_LLVM_DLLTOOL} -m ${MVSUP_LLVM_MACHINE} -d ${def} -l ${lib} ${kill_at}
    DEPENDS ${def}
    COMMENT "Building the MSVC-ABI import library of ${dll}"
    VERBATIM)
  list(APPEND MVSUP_MSVC_RUNTIME_LIBS ${lib})
endforeach()
add_custom_target(msvc_abi_runtime_libs DEPENDS ${MVSUP_MSVC_RUNTIME_LIBS})

# Wine's headers define inline versions of interlocked functions that clang
# already has built in when it compiles C++ for the MSVC ABI; they are
# renamed out of the way.
set(MVSUP_WINE_HEADER_RENAMES)
foreach(function _InterlockedAnd64 _InterlockedCompareExchangePointer _InterlockedDecrement64
                 _InterlockedExchangeAdd64 _InterlockedExchangePointer _InterlockedIncrement64 _InterlockedOr64
                 _InterlockedXor64 _InterlockedCompareExchange128)
  list(APPEND MVSUP_WINE_HEADER_RENAMES -D${function}=wine${function})
endforeach()

set(MVSUP_MSVC_COMMON_FLAGS
    --target=${CMAKE_SYSTEM_PROCESSOR}-pc-windows-msvc -O2 -Wall -Wextra -Werror
    -nostdlibinc -isystem ${MVSUP_WINE_INCLUDE_DIR}/msvcrt -isystem ${MVSUP_WINE_INCLUDE_DIR}/windows
    -D_UCRT -DWINE_UNICODE_NATIVE -DUNICODE -D_UNICODE
    -I${CMAKE_SOURCE_DIR}/src/exports -I${CMAKE_SOURCE_DIR}/tests/abi)
set(MVSUP_MSVC_C_FLAGS -std=c11 -pedantic)
set(MVSUP_MSVC_CXX_FLAGS -std=c++17 -nostdinc++ -fms-extensions -fcxx-exceptions -fexceptions
    ${MVSUP_WINE_HEADER_RENAMES})

function(mvsup_msvc_abi_client name)
  cmake_parse_arguments(ARG "" "" "SOURCES" ${ARGN})
  set(support ${CMAKE_SOURCE_DIR}/tests/abi/msvc)
  set(sources ${ARG_SOURCES} ${support}/crt0.c)
  list(FILTER ARG_SOURCES INCLUDE REGEX "\\.cpp$")
  if(ARG_SOURCES)
    list(APPEND sources ${support}/cxx_support.cpp)
  endif()

  set(objects)
  foreach(source IN LISTS sources)
    get_filename_component(stem ${source} NAME_WE)
    set(object ${MVSUP_MSVC_ABI_DIR}/${name}/${stem}.obj)
    if(source MATCHES "\\.c$")
      set(language_flags ${MVSUP_MSVC_C_FLAGS})
    else()
      set(language_flags ${MVSUP_MSVC_CXX_FLAGS})
    endif()
    add_custom_command(
      OUTPUT ${object}
      COMMAND ${MVSUP_CLANG} ${MVSUP_MSVC_COMMON_FLAGS} ${language_flags} -MD -MF ${object}.d
              -c ${source} -o ${object}
      DEPENDS ${source}
      DEPFILE ${object}.d
      COMMENT "Compiling ${stem} for the MSVC ABI"
      VERBATIM)
    list(APPEND objects ${object})
  endforeach()

  set(program ${CMAKE_BINARY_DIR}/bin/${name}.exe)
  add_custom_command(
    OUTPUT ${program}
    COMMAND ${MVSUP_LLD_LINK} /nologo /nodefaultlib /subsystem:console /entry:mainCRTStartup
            /machine:${MVSUP_MSVC_MACHINE} /out:${program} ${objects} ${MVSUP_IMPLIB_MSVC} ${MVSUP_MSVC_RUNTIME_LIBS}
    DEPENDS ${objects} ${MVSUP_IMPLIB_MSVC} ${MVSUP_MSVC_RUNTIME_LIBS}
    COMMENT "Linking ${name} with lld-link"
    VERBATIM)
  add_custom_target(${name} ALL DEPENDS ${program})
  add_dependencies(${name} MvSup2u MvSup2u_importlibs msvc_abi_runtime_libs)
endfunction()
