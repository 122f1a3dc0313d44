# The page is built by Vite into resources/dist (the `dev` script does that; the source archive brings
# it along) and copied beside the program as its resource bundle.
set(VELTO_PAGE ${CMAKE_SOURCE_DIR}/resources/dist CACHE PATH "The built page")
add_custom_target(page ALL
    COMMAND ${CMAKE_COMMAND} -DSOURCE=${VELTO_PAGE}
        -DTARGET=${CMAKE_BINARY_DIR}/Velto_velto_app.bundle
        -P ${CMAKE_SOURCE_DIR}/cmake/copy_page.cmake
    VERBATIM)
