# Lays out the application bundle APPLICATION: the program EXECUTABLE, its INFO (Info.plist), ICON,
# the page's resource BUNDLE and the .lproj folders in LOCALISATIONS, signed as IDENTITY. What a crash
# report is read with goes into Velto.dSYM beside it.
# Made anew each time, so that nothing of an older build stays inside the seal.
set(contents ${APPLICATION}/Contents)
get_filename_component(program ${EXECUTABLE} NAME)
string(REGEX REPLACE "\\.app$" ".dSYM" symbols ${APPLICATION})
file(REMOVE_RECURSE ${APPLICATION} ${symbols})
file(MAKE_DIRECTORY ${contents}/MacOS ${contents}/Resources)
file(COPY ${EXECUTABLE} DESTINATION ${contents}/MacOS)
file(COPY ${INFO} DESTINATION ${contents})
file(GLOB localisations ${LOCALISATIONS}/*.lproj)
file(COPY ${ICON} ${BUNDLE} ${localisations} DESTINATION ${contents}/Resources)
execute_process(COMMAND dsymutil ${EXECUTABLE} -o ${symbols} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND strip -S -x ${contents}/MacOS/${program} COMMAND_ERROR_IS_FATAL ANY)

# The hardened runtime without a single exception: the program maps no code of its own making, and
# the page's scripts run in the system's processes. No time can be had for a signature of nobody's.
set(timestamp --timestamp)
if(IDENTITY STREQUAL "-")
    set(timestamp --timestamp=none)
endif()
execute_process(
    COMMAND codesign --force --options runtime ${timestamp} --sign ${IDENTITY} ${APPLICATION}
    COMMAND_ERROR_IS_FATAL ANY)
