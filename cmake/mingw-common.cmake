# Shared part of the two cross toolchain files; MVSUP_TRIPLET names the target.
set(CMAKE_C_COMPILER   /usr/bin/${MVSUP_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER /usr/bin/${MVSUP_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER  /usr/bin/${MVSUP_TRIPLET}-windres)
set(CMAKE_AR           /usr/bin/${MVSUP_TRIPLET}-ar)
set(CMAKE_RANLIB       /usr/bin/${MVSUP_TRIPLET}-ranlib)
set(CMAKE_NM           /usr/bin/${MVSUP_TRIPLET}-nm)
set(CMAKE_OBJDUMP      /usr/bin/${MVSUP_TRIPLET}-objdump)
set(MVSUP_DLLTOOL      /usr/bin/${MVSUP_TRIPLET}-dlltool)

set(CMAKE_FIND_ROOT_PATH /usr/${MVSUP_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)

# Test programs run through Wine; the wrapper pins the prefix and environment.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh)
