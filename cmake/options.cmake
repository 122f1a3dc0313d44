option(VELTO_TESTS "Build the unit tests" ON)
set(VELTO_TEST_FOLDERS "" CACHE STRING "Folders whose unit tests are built; empty for all")
option(VELTO_BENCH "Build the benchmarks" OFF)
set(VELTO_SANITIZE "" CACHE STRING "Value of -fsanitize= for everything built here")

set(CMAKE_CXX_STANDARD 23)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_OBJCXX_STANDARD 23)
set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
    set(CMAKE_OBJCXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

# Designated initialisers leave the other members at their defaults on purpose.
add_library(velto_options INTERFACE)
target_compile_options(velto_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -Wno-missing-field-initializers)
if(APPLE)
    target_compile_options(velto_options INTERFACE -mmacosx-version-min=13.0
        $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
    target_link_options(velto_options INTERFACE -mmacosx-version-min=13.0)
else()
    # 64-bit file offsets everywhere; O_PATH, statx and renameat2 are GNU extensions.
    target_compile_definitions(velto_options INTERFACE _GNU_SOURCE _FILE_OFFSET_BITS=64)
endif()
if(VELTO_SANITIZE)
    target_compile_options(velto_options INTERFACE
        -fsanitize=${VELTO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(velto_options INTERFACE -fsanitize=${VELTO_SANITIZE})
endif()
