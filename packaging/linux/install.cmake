# Where everything goes on Linux. The worker stands beside the program, which looks for it there; the
# command is a link to the program (which asks the system where it really is); the page is the same for
# every processor.
include(GNUInstallDirs)
include(${CMAKE_CURRENT_LIST_DIR}/documents.cmake)

set(folder lib/velto)
install(TARGETS velto velto-icons DESTINATION ${folder})
install(DIRECTORY ${CMAKE_BINARY_DIR}/Velto_velto_app.bundle
    DESTINATION ${CMAKE_INSTALL_DATADIR}/velto)
file(RELATIVE_PATH target /${CMAKE_INSTALL_BINDIR} /${folder}/velto)
file(MAKE_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/bin)
file(CREATE_LINK ${target} ${CMAKE_CURRENT_BINARY_DIR}/bin/velto SYMBOLIC)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/bin/velto DESTINATION ${CMAKE_INSTALL_BINDIR})

# What follows needs nothing that is compiled: `cmake --install BUILD --component desktop` is enough.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME desktop)
set(made ${CMAKE_CURRENT_BINARY_DIR}/made)

# AppStream wants three parts.
string(REGEX MATCHALL "\\." stops "${VELTO_APP_ID}")
list(LENGTH stops stops)
set(VELTO_COMPONENT_ID ${VELTO_APP_ID})
if(stops LESS 2)
    string(APPEND VELTO_COMPONENT_ID .velto)
endif()
string(REGEX REPLACE "\\.[^.]*$" "" VELTO_DEVELOPER_ID "${VELTO_COMPONENT_ID}")
set(VELTO_HOMEPAGE_ELEMENT "")
if(VELTO_HOMEPAGE)
    set(VELTO_HOMEPAGE_ELEMENT "  <url type=\"homepage\">${VELTO_HOMEPAGE}</url>\n")
endif()
# The guide's pictures, of the view that a person sees first on top.
set(VELTO_SCREENSHOTS_ELEMENT "")
if(VELTO_SCREENSHOTS)
    set(kind " type=\"default\"")
    string(APPEND VELTO_SCREENSHOTS_ELEMENT "  <screenshots>\n")
    foreach(picture IN ITEMS
            "overview|What fills the disk|Qué llena el disco" "folders|Folders, and what has grown|Carpetas, y lo que ha crecido"
            "cleanup|What can go|Lo que puede irse" "trash|The way back|El camino de vuelta")
        string(REPLACE "|" ";" picture "${picture}")
        list(GET picture 0 name)
        list(GET picture 1 en)
        list(GET picture 2 es)
        string(APPEND VELTO_SCREENSHOTS_ELEMENT
            "    <screenshot${kind}>\n"
            "      <caption>${en}</caption>\n      <caption xml:lang=\"es\">${es}</caption>\n"
            "      <image>${VELTO_SCREENSHOTS}/en/guide-${name}-en.png</image>\n"
            "      <image xml:lang=\"es\">${VELTO_SCREENSHOTS}/es/guide-${name}-es.png</image>\n"
            "    </screenshot>\n")
        set(kind "")
    endforeach()
    string(APPEND VELTO_SCREENSHOTS_ELEMENT "  </screenshots>\n")
endif()
set(VELTO_RELEASE_TYPE stable)
if(PROJECT_VERSION_MAJOR EQUAL 0)
    set(VELTO_RELEASE_TYPE development)
endif()

configure_file(linux/velto.desktop.in ${made}/${VELTO_APP_ID}.desktop @ONLY)
configure_file(linux/velto.metainfo.xml.in ${made}/${VELTO_COMPONENT_ID}.metainfo.xml @ONLY)
install(FILES ${made}/${VELTO_APP_ID}.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${made}/${VELTO_COMPONENT_ID}.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES icon.svg DESTINATION ${icons}/scalable/apps RENAME ${VELTO_APP_ID}.svg)
install(FILES linux/icon-symbolic.svg
    DESTINATION ${icons}/symbolic/apps RENAME ${VELTO_APP_ID}-symbolic.svg)
foreach(size 128 256)
    install(FILES linux/icon-${size}.png
        DESTINATION ${icons}/${size}x${size}/apps RENAME ${VELTO_APP_ID}.png)
endforeach()

velto_compressed_page(linux/man/velto.1.in velto.1 ${CMAKE_INSTALL_MANDIR}/man1)
velto_compressed_page(linux/man/velto.es.1.in es/velto.1 ${CMAKE_INSTALL_MANDIR}/es/man1)

# Debian's zsh looks for what packages bring in a folder of its own.
set(zsh site-functions)
if(EXISTS /etc/debian_version)
    set(zsh vendor-completions)
endif()
set(completions linux/completions)
install(FILES ${completions}/velto.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME velto)
install(FILES ${completions}/_velto DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh})
install(FILES ${completions}/velto.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)

velto_install_documents(${CMAKE_INSTALL_DATADIR}/doc/velto)
