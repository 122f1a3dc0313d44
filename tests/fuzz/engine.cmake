# What all fuzz targets share. Included by the tests, which replay the kept inputs, and by the build of
# the fuzzers themselves.
set(patterns engine/*.cpp)
if(NOT APPLE)
    list(APPEND patterns engine/linux/*.cpp)
endif()
list(TRANSFORM patterns PREPEND ${CMAKE_CURRENT_LIST_DIR}/)
file(GLOB sources CONFIGURE_DEPENDS ${patterns})
list(FILTER sources EXCLUDE REGEX "/libfuzzer\\.cpp$")
add_library(velto_fuzz_engine STATIC ${sources})
target_link_libraries(velto_fuzz_engine PUBLIC velto_test_support PRIVATE velto_options)
if(NOT APPLE)
    target_link_libraries(velto_fuzz_engine PUBLIC velto_drawing)
endif()
