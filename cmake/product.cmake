# How product code is compiled and how the program is linked.

# clang counts signs among the conversions, which gcc does not; the platform's own macros would not
# pass.
set(strict_warnings
    -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion -Wmissing-declarations
    -Wredundant-decls -Werror)

add_library(product INTERFACE)
target_compile_options(product INTERFACE
    ${strict_warnings} $<$<COMPILE_LANGUAGE:CXX>:-fno-exceptions -fno-rtti>)

# Sections and link-time optimisation keep the program small. The objects hold ordinary code as
# well, so that the many test programs link fast, and no name of the checkout's folder.
if(CMAKE_BUILD_TYPE STREQUAL Release)
    target_compile_options(product INTERFACE
        -ffunction-sections -ffile-prefix-map=${CMAKE_SOURCE_DIR}=.)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
        set(link_time_optimisation -O2 -flto)
        target_compile_options(product INTERFACE -flto -ffat-lto-objects)
    endif()
endif()

if(COVERAGE)
    target_compile_options(product INTERFACE $<$<COMPILE_LANGUAGE:CXX>:--coverage>)
    target_link_options(product INTERFACE --coverage)
endif()

# Only libmodplug uses new and delete. As malloc and free they leave out what a failing new would
# need: exceptions, their names, threads, which together are more code than all of ours.
set(new_is_malloc
    -Wl,--defsym=_Znwy=malloc,--defsym=_Znay=malloc
    -Wl,--defsym=_ZdlPv=free,--defsym=_ZdaPv=free,--defsym=_ZdlPvy=free)

# WinMain is asked for by name: the start-up code that calls it comes after our libraries.
function(link_as_program target)
    set_target_properties(${target} PROPERTIES
        LINKER_LANGUAGE CXX RUNTIME_OUTPUT_DIRECTORY ${PROGRAM_FOLDER})
    target_link_options(${target} PRIVATE
        ${link_time_optimisation} ${new_is_malloc} -static -s
        -Wl,-u,WinMain -Wl,--gc-sections -Wl,--no-insert-timestamp)
endfunction()
