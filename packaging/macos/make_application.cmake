# Lays out the application bundle APPLICATION: the program EXECUTABLE, its INFO (Info.plist), ICON,
# the page's resource BUNDLE and the .lproj folders in LOCALISATIONS, signed as IDENTITY.
# Made anew each time, so that nothing of an older build stays inside the seal.
set(contents ${APPLICATION}/Contents)
file(REMOVE_RECURSE ${APPLICATION})
file(MAKE_DIRECTORY ${contents}/MacOS ${contents}/Resources)
file(COPY ${EXECUTABLE} DESTINATION ${contents}/MacOS)
file(COPY ${INFO} DESTINATION ${contents})
file(GLOB localisations ${LOCALISATIONS}/*.lproj)
file(COPY ${ICON} ${BUNDLE} ${localisations} DESTINATION ${contents}/Resources)
execute_process(COMMAND codesign --force --sign ${IDENTITY} ${APPLICATION}
    COMMAND_ERROR_IS_FATAL ANY)
