# The program looks for its resource bundle and for its worker beside itself, so all live in a folder
# of their own and the command is a link to the program (which asks the system where it really is).
include(GNUInstallDirs)
set(folder lib/velto)
install(TARGETS velto velto-icons DESTINATION ${folder})
install(DIRECTORY ${CMAKE_BINARY_DIR}/Velto_velto_app.bundle DESTINATION ${folder})
set(command ${CMAKE_INSTALL_BINDIR}/velto)
install(CODE "
    set(command \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${command}\")
    cmake_path(GET command PARENT_PATH parent)
    file(MAKE_DIRECTORY \"\${parent}\")
    file(RELATIVE_PATH target \"\${parent}\" \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${folder}/velto\")
    message(STATUS \"Linking: \${command} -> \${target}\")
    file(CREATE_LINK \"\${target}\" \"\${command}\" SYMBOLIC)
")

set(linux ${CMAKE_CURRENT_SOURCE_DIR}/linux)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${linux}/app.velto.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${linux}/app.velto.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
    RENAME app.velto.Velto.metainfo.xml)
install(FILES icon.svg DESTINATION ${icons}/scalable/apps RENAME app.velto.svg)
foreach(size 128 256)
    install(FILES ${linux}/icon-${size}.png
        DESTINATION ${icons}/${size}x${size}/apps RENAME app.velto.png)
endforeach()
