# Writes a CTest file (OUTPUT) with one test for each suite of a test program (PROGRAM, started by
# LAUNCHER). A process for each single test would spend most of its time on starting: a sanitizer
# takes a tenth of a second for that. Runs when the program has been linked. NEEDS: what the suites
# read besides the program (tools/selection).
execute_process(
    COMMAND ${LAUNCHER} ${PROGRAM} --gtest_list_tests
    OUTPUT_VARIABLE listed COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "(^|\n)[^ \n]+\\." suites "${listed}")
list(JOIN LAUNCHER " " launcher)
list(PREPEND NEEDS ${PROGRAM} ${SUPPRESSIONS}/tsan_suppressions.txt ${SUPPRESSIONS}/lsan_suppressions.txt)
set(script "")
foreach(suite IN LISTS suites)
    string(REGEX REPLACE "^\n|\\.$" "" suite "${suite}")
    set(name "${PREFIX}${suite}")
    string(APPEND script
        "add_test([[${name}]] ${launcher} [[${PROGRAM}]] [[--gtest_filter=${suite}.*]])\n"
        "set_tests_properties([[${name}]] PROPERTIES LABELS [[${LABEL}]] REQUIRED_FILES \"${NEEDS}\" ENVIRONMENT \"TSAN_OPTIONS=suppressions=${SUPPRESSIONS}/tsan_suppressions.txt;LSAN_OPTIONS=suppressions=${SUPPRESSIONS}/lsan_suppressions.txt:print_suppressions=0\" WORKING_DIRECTORY [[${FOLDER}]])\n")
endforeach()
if(script STREQUAL "")
    message(FATAL_ERROR "${PROGRAM} has no tests")
endif()
file(WRITE ${OUTPUT} "${script}")
