# Manual pages and what goes to share/doc/velto. Both carry the day of the build, which
# SOURCE_DATE_EPOCH sets: equal sources then give equal files.
string(TIMESTAMP VELTO_DATE "%Y-%m-%d" UTC)
string(TIMESTAMP VELTO_MAIL_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)

find_program(GZIP_PROGRAM gzip REQUIRED)

# velto_compressed FILE COMPRESSED: the same bytes whenever and by whomever it is done.
function(velto_compressed file compressed)
    execute_process(COMMAND ${GZIP_PROGRAM} -9nc ${file}
        OUTPUT_FILE ${compressed} COMMAND_ERROR_IS_FATAL ANY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endfunction()

# velto_compressed_page TEMPLATE NAME FOLDER: one manual page, installed to FOLDER.
function(velto_compressed_page template name folder)
    set(page ${CMAKE_CURRENT_BINARY_DIR}/man/${name})
    configure_file(${template} ${page} @ONLY)
    velto_compressed(${page} ${page}.gz)
    install(FILES ${page}.gz DESTINATION ${folder})
endfunction()

# velto_install_documents FOLDER: the licence, what is new, the notices of what the page is made of
# and the guide, as far as they are there.
function(velto_install_documents folder)
    set(made ${CMAKE_CURRENT_BINARY_DIR}/documents)
    file(MAKE_DIRECTORY ${made})
    velto_compressed(${CMAKE_SOURCE_DIR}/CHANGELOG.md ${made}/changelog.gz)
    install(FILES linux/debian/copyright ${made}/changelog.gz DESTINATION ${folder})
    install(FILES ${CMAKE_BINARY_DIR}/Velto_velto_app.bundle/NOTICES.txt
        DESTINATION ${folder} OPTIONAL)
    if(EXISTS ${CMAKE_SOURCE_DIR}/docs/guide)
        install(DIRECTORY ${CMAKE_SOURCE_DIR}/docs/guide DESTINATION ${folder})
    endif()
    if(VELTO_DEBIAN_FILES)
        configure_file(linux/debian/changelog.in ${made}/changelog.Debian @ONLY)
        velto_compressed(${made}/changelog.Debian ${made}/changelog.Debian.gz)
        install(FILES ${made}/changelog.Debian.gz DESTINATION ${folder})
        install(FILES linux/debian/lintian-overrides
            DESTINATION ${CMAKE_INSTALL_DATADIR}/lintian/overrides RENAME velto)
    endif()
endfunction()
