# The builds that ./dev test makes compile several sources as one, with precompiled headers: what the
# sources of a folder share, their headers and the templates that they make use of, is compiled once for
# all of them and not anew for each, which is most of what a cold build does. Names in the unnamed namespaces
# of two sources must differ for that; the compiler says so (redefinition, ambiguity): give the thing a name
# that tells the two apart, or both the one thing. -DCMAKE_UNITY_BUILD=OFF gives every source its own object
# again. The debug build does that, and the analyzer, both in ./dev check: there no source gets away with a
# missing include.
set(CMAKE_UNITY_BUILD_BATCH_SIZE 25)
option(VELTO_COMPILE_TOGETHER "Compile several sources as one, with precompiled headers" OFF)
if((VELTO_SANITIZE OR VELTO_COMPILE_TOGETHER) AND NOT APPLE)
    set(VELTO_COMPILE_TOGETHER ON)
    set(CMAKE_UNITY_BUILD ON CACHE BOOL "Compile several sources as one")
else()
    set(VELTO_COMPILE_TOGETHER OFF)
endif()
