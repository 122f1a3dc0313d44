# The page is built by Vite into resources/dist (the `dev` script does that) and copied beside the
# program as its resource bundle.
add_custom_target(page ALL
    COMMAND ${CMAKE_COMMAND} -DSOURCE=${CMAKE_SOURCE_DIR}/resources/dist
        -DTARGET=${CMAKE_BINARY_DIR}/Velto_velto_app.bundle
        -P ${CMAKE_SOURCE_DIR}/cmake/copy_page.cmake
    VERBATIM)
