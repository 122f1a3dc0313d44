option(VELTO_TESTS "Build the unit tests" ON)
set(VELTO_TEST_FOLDERS "" CACHE STRING "Folders whose unit tests are built; empty for all")
option(VELTO_PROGRAM_TESTS "Build what the tests of the real program need" ON)
option(VELTO_BENCH "Build the benchmarks" OFF)
option(VELTO_FUZZ "Build the fuzz targets, with clang, and none of the tests" OFF)
option(VELTO_WARNINGS_AS_ERRORS "A warning of the compiler fails the build (the presets say so)" OFF)
set(VELTO_SANITIZE "" CACHE STRING "Value of -fsanitize= for everything built here")

set(VELTO_APP_ID app.velto CACHE STRING
    "The program's identifier: on the session bus, of its windows, desktop entry, icon and units")
if(NOT VELTO_APP_ID MATCHES "^[A-Za-z_][A-Za-z0-9_-]*(\\.[A-Za-z_][A-Za-z0-9_-]*)+$")
    message(FATAL_ERROR "VELTO_APP_ID: \"${VELTO_APP_ID}\" is no application identifier (parts of letters, digits, \"_\" and \"-\" with full stops between)")
endif()

if(APPLE)
    set(VELTO_APP_ID app.velto)  # what a Mac knows the program's permissions by
endif()

set(VELTO_MACOS_VERSION 13.3)

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 23)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
# Nothing loads code into the program, so nothing of it needs to be found by name.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # What ccache wants to be told before it caches what uses a precompiled header.
    set(launcher ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE_PROGRAM})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
    set(CMAKE_OBJCXX_COMPILER_LAUNCHER ${launcher})
endif()

# Designated initialisers leave the other members at their defaults on purpose.
add_library(velto_options INTERFACE)
target_compile_options(velto_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${VELTO_WARNINGS_AS_ERRORS}>:-Werror>
    -Wno-missing-field-initializers)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 13)
    # What these see after inlining is at times not there: in the destructor of an empty optional that
    # could hold a shared pointer, and in a vector that is appended to another.
    target_compile_options(velto_options INTERFACE
        -Wno-error=maybe-uninitialized -Wno-error=stringop-overflow)
endif()
if(APPLE)
    # The page's style sheets need the web engine of 13.3.
    target_compile_options(velto_options INTERFACE -mmacosx-version-min=${VELTO_MACOS_VERSION}
        $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
    target_link_options(velto_options INTERFACE -mmacosx-version-min=${VELTO_MACOS_VERSION})
else()
    # 64-bit file offsets everywhere; O_PATH, statx and renameat2 are GNU extensions.
    target_compile_definitions(velto_options INTERFACE _GNU_SOURCE _FILE_OFFSET_BITS=64)
    # GLib's own flag; with it everywhere, all sources can share a precompiled header.
    target_compile_options(velto_options INTERFACE -pthread)
endif()

# What nothing calls is left out of what is linked: of the program for its size, of the programs of
# the tests so that a change stays away from those that cannot come to it (tools/selection).
if(NOT APPLE)
    target_compile_options(velto_options INTERFACE -ffunction-sections -fdata-sections)
    target_link_options(velto_options INTERFACE -Wl,--gc-sections)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang" AND NOT VELTO_FUZZ)
        # What is said of a function's exceptions and of a global goes with it; clang does that where
        # it is told that the linker is no old one.
        target_compile_options(velto_options INTERFACE -fbinutils-version=2.36)
        if(VELTO_SANITIZE MATCHES "address")
            target_compile_options(velto_options INTERFACE -fsanitize-address-globals-dead-stripping)
        endif()
    endif()
endif()

# What makes a mistake end the program and not give it away. The sanitized builds have better.
if(NOT VELTO_SANITIZE)
    target_compile_options(velto_options INTERFACE -fstack-protector-strong
        $<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE>
        $<$<CONFIG:Release,RelWithDebInfo>:-D_FORTIFY_SOURCE=3>)
    if(NOT APPLE)
        target_compile_options(velto_options INTERFACE
            -fPIE -fstack-clash-protection -D_GLIBCXX_ASSERTIONS)
        if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
            target_compile_options(velto_options INTERFACE -fcf-protection=full)
        endif()
        target_link_options(velto_options INTERFACE -pie -Wl,-z,relro,-z,now,-z,noexecstack)
    endif()
endif()
if(VELTO_SANITIZE)
    # -g1 is what a report's stack needs, and compiles a quarter faster.
    target_compile_options(velto_options INTERFACE
        -fsanitize=${VELTO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all -g1)
    # Clang 14 takes `if consteval` for true outside of constants as well: every string of libstdc++ is
    # then copied and compared byte by byte, in the code that is meant for the compiler alone, and half
    # the time of the tests goes there. Without the feature the library asks the compiler's built-in.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        target_compile_options(velto_options INTERFACE -U__cpp_if_consteval)
    endif()
    # What LLVM's linker does in one second takes the system's four.
    find_program(LLD_PROGRAM ld.lld)
    if(LLD_PROGRAM AND NOT APPLE AND CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        target_link_options(velto_options INTERFACE -fuse-ld=lld)
    endif()
    target_link_options(velto_options INTERFACE -fsanitize=${VELTO_SANITIZE})
endif()
if(CMAKE_UNITY_BUILD)
    # What another source of the same unit names is hidden by nothing. The plain builds warn.
    target_compile_options(velto_options INTERFACE -Wno-shadow)
endif()
if(VELTO_SANITIZE MATCHES "address")
    # A null pointer that is followed, or an access outside an object, is the address sanitizer's to
    # report. Checked at every use, they are what such a build spends most of its time on.
    target_compile_options(velto_options INTERFACE -fno-sanitize=null,object-size)
endif()

# What is compiled together shares precompiled headers as well (unity.cmake).
function(velto_precompile target from)
    if(NOT VELTO_COMPILE_TOGETHER)
        return()
    endif()
    # What ccache wants to see.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE -fpch-preprocess)
    else()
        target_compile_options(${target} PRIVATE "SHELL:-Xclang -fno-pch-timestamp")
    endif()
    if(target STREQUAL from)
        target_precompile_headers(${target} PRIVATE ${ARGN})
    else()
        target_precompile_headers(${target} REUSE_FROM ${from})
    endif()
endfunction()
