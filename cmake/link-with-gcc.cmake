# <FLAGS> is left out: it holds what only clang understands.
set(CMAKE_CXX_LINK_EXECUTABLE
    "x86_64-w64-mingw32-g++-posix <LINK_FLAGS> <OBJECTS> -o <TARGET> <LINK_LIBRARIES>")
