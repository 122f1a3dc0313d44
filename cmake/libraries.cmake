find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(nlohmann_json REQUIRED)

if(VELTO_COMPILE_TOGETHER)
    file(WRITE ${CMAKE_BINARY_DIR}/precompiled.cpp "")
    add_library(velto_precompiled OBJECT ${CMAKE_BINARY_DIR}/precompiled.cpp)
    target_link_libraries(velto_precompiled PRIVATE
        nlohmann_json::nlohmann_json fmt::fmt Threads::Threads velto_options)
    velto_precompile(velto_precompiled velto_precompiled
        <algorithm> <functional> <map> <memory> <optional> <string> <vector>
        <fmt/format.h> <nlohmann/json.hpp>)
endif()

# One static library per folder, made of every source in it. A header is reached as
# "folder/Name.h", and only by the libraries that link to that folder's library: each library
# exports an include root that holds nothing but a link to its own folder. A forbidden include is
# therefore not found.
function(velto_library folder)
    cmake_parse_arguments(PARSE_ARGV 1 LIB "" "" "SUBFOLDERS;LINKS;PRIVATE_LINKS")
    set(root ${CMAKE_BINARY_DIR}/include/${folder})
    file(MAKE_DIRECTORY ${root})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/${folder} ${root}/${folder} SYMBOLIC)
    set(patterns *.cpp)
    foreach(subfolder IN LISTS LIB_SUBFOLDERS)
        list(APPEND patterns ${subfolder}/*.cpp)
        if(APPLE)
            list(APPEND patterns ${subfolder}/*.mm)
        endif()
    endforeach()
    file(GLOB sources CONFIGURE_DEPENDS ${patterns})
    list(FILTER sources EXCLUDE REGEX "/main\\.cpp$")
    add_library(velto_${folder} STATIC ${sources})
    target_include_directories(velto_${folder} PUBLIC ${root})
    target_link_libraries(velto_${folder}
        PUBLIC ${LIB_LINKS} PRIVATE ${LIB_PRIVATE_LINKS} velto_options)
    velto_precompile(velto_${folder} velto_precompiled)
endfunction()

# System libraries bring headers that our warnings are not for.
function(velto_system_package target)
    pkg_check_modules(${target} REQUIRED IMPORTED_TARGET ${ARGN})
    get_target_property(folders PkgConfig::${target} INTERFACE_INCLUDE_DIRECTORIES)
    if(folders)
        set_target_properties(PkgConfig::${target} PROPERTIES
            INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${folders}")
    endif()
    # What every x86-64 processor has anyway; named, it keeps clang from sharing headers.
    get_target_property(options PkgConfig::${target} INTERFACE_COMPILE_OPTIONS)
    if(options)
        list(FILTER options EXCLUDE REGEX "^-m(sse|fpmath)")
        set_target_properties(PkgConfig::${target} PROPERTIES INTERFACE_COMPILE_OPTIONS "${options}")
    endif()
endfunction()
