# What CPack does with the files of a package between laying them out and packing them.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    file(GLOB_RECURSE changes ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/changelog.Debian.gz)
    file(GLOB lintian ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/share/lintian
        ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/share/lintian)
    if(changes OR lintian)
        file(REMOVE_RECURSE ${changes} ${lintian})
    endif()
endif()
# All files are as old as the sources.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find ${CPACK_TEMPORARY_INSTALL_DIRECTORY}
        -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +
        COMMAND_ERROR_IS_FATAL ANY)
endif()
