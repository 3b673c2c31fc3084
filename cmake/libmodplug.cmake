# The library that renders the song, as the target `libmodplug`: an installed one where there is one
# for the target, as in MSYS2, otherwise one built from Debian's source package, once for all
# presets.

find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
    pkg_check_modules(INSTALLED_MODPLUG QUIET libmodplug)
endif()

if(INSTALLED_MODPLUG_FOUND)
    set(modplug_include ${INSTALLED_MODPLUG_INCLUDEDIR})
    set(modplug_library_folder ${INSTALLED_MODPLUG_LIBDIR})
elseif(CMAKE_HOST_WIN32)
    message(FATAL_ERROR "libmodplug is missing: install mingw-w64-x86_64-libmodplug")
else()
    set(modplug_folder ${CMAKE_SOURCE_DIR}/build/libmodplug)
    execute_process(
        COMMAND ${CMAKE_CURRENT_LIST_DIR}/build-libmodplug ${modplug_folder} RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "libmodplug could not be built; the reason stands above")
    endif()
    set(modplug_include ${modplug_folder}/include)
    set(modplug_library_folder ${modplug_folder}/lib)
endif()

add_library(libmodplug STATIC IMPORTED)
set_target_properties(libmodplug PROPERTIES
    IMPORTED_LOCATION ${modplug_library_folder}/libmodplug.a
    INTERFACE_INCLUDE_DIRECTORIES ${modplug_include}
    INTERFACE_COMPILE_DEFINITIONS MODPLUG_STATIC) # else the header asks for a DLL
