# Property lists matter on Linux only in a Mac's home. Sets `property_lists`, the folder of the reader,
# and `property_list_library`.
set(VELTO_PROPERTY_LISTS AUTO CACHE STRING
    "Read property lists with libplist: ON, OFF, or AUTO for where it is installed")
if(VELTO_PROPERTY_LISTS STREQUAL "AUTO")
    pkg_check_modules(LIBPLIST QUIET libplist-2.0)
    set(VELTO_HAS_PROPERTY_LISTS ${LIBPLIST_FOUND})
else()
    set(VELTO_HAS_PROPERTY_LISTS ${VELTO_PROPERTY_LISTS})
endif()

if(VELTO_HAS_PROPERTY_LISTS)
    velto_system_package(PLIST libplist-2.0)
    set(property_lists linux/with_libplist)
    set(property_list_library PkgConfig::PLIST)
    return()
endif()
if(VELTO_TESTS)
    message(FATAL_ERROR "The unit tests build homes of a Mac and need libplist-2.0: install it (libplist-dev, libplist-devel), or leave the tests out (-DVELTO_TESTS=OFF)")
endif()
message(STATUS "Without libplist-2.0: a Mac's home on Linux is shown without the names and icons of its applications")
set(property_lists linux/without_libplist)
set(property_list_library "")
