# <FLAGS> is left out: it holds what only clang understands.
set(CMAKE_CXX_LINK_EXECUTABLE
    "x86_64-w64-mingw32-g++-posix <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES>")
set(CMAKE_CXX_CREATE_SHARED_LIBRARY
    "x86_64-w64-mingw32-g++-posix <LINK_FLAGS> -shared -o <TARGET> -Wl,--out-implib,<TARGET_IMPLIB> <OBJECTS> <LINK_LIBRARIES>")
