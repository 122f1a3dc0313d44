# A release build lays out Velto.app beside the plain program; `velto` beside
# "Velto_velto_app.bundle" keeps working without it.
if(NOT CMAKE_BUILD_TYPE STREQUAL "Release")
    return()
endif()

set(identity "$ENV{VELTO_SIGNING_IDENTITY}")
if(NOT identity)
    set(identity "-")
endif()
set(VELTO_SIGNING_IDENTITY "${identity}" CACHE STRING
    "Identity that signs Velto.app; \"-\" signs it ad hoc, for nobody")

set(macos ${CMAKE_CURRENT_SOURCE_DIR}/macos)
set(application ${CMAKE_BINARY_DIR}/Velto.app)
set(icon ${CMAKE_CURRENT_BINARY_DIR}/Velto.icns)
set(info ${CMAKE_CURRENT_BINARY_DIR}/Info.plist)
configure_file(${macos}/Info.plist.in ${info} @ONLY)

add_custom_command(OUTPUT ${icon}
    COMMAND ${CMAKE_COMMAND} -DSOURCE=${macos}/icon-1024.png -DTARGET=${icon}
        -DWORK=${CMAKE_CURRENT_BINARY_DIR} -P ${macos}/make_icns.cmake
    DEPENDS ${macos}/icon-1024.png ${macos}/make_icns.cmake
    VERBATIM)
add_custom_target(application ALL
    COMMAND ${CMAKE_COMMAND} -DAPPLICATION=${application} -DEXECUTABLE=$<TARGET_FILE:velto>
        -DINFO=${info} -DICON=${icon} -DBUNDLE=${CMAKE_BINARY_DIR}/Velto_velto_app.bundle
        -DLOCALISATIONS=${macos} -DIDENTITY=${VELTO_SIGNING_IDENTITY}
        -P ${macos}/make_application.cmake
    DEPENDS ${icon}
    VERBATIM)
add_dependencies(application velto page)

install(DIRECTORY ${application} DESTINATION . USE_SOURCE_PERMISSIONS)
