# The same target with Debian's clang. Headers and libraries are those of the cross g++, which also
# links.

include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-mingw32)
set(CMAKE_ASM_COMPILER_TARGET x86_64-w64-mingw32)

# clang looks for gcc in folders named by a bare version; Debian's is called 12-posix.
file(GLOB gcc_folder /usr/lib/gcc/x86_64-w64-mingw32/*-posix)
set(CMAKE_CXX_STANDARD_INCLUDE_DIRECTORIES
    ${gcc_folder}/include/c++ ${gcc_folder}/include/c++/x86_64-w64-mingw32)

# As in this target's libstdc++, whose own compiler says so by itself.
set(CMAKE_CXX_FLAGS_INIT -D__GXX_TYPEINFO_EQUALITY_INLINE=0)

set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(CMAKE_USER_MAKE_RULES_OVERRIDE_CXX ${CMAKE_CURRENT_LIST_DIR}/link-with-gcc.cmake)
