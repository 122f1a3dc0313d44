# The tests that need no test program of their own: the page's, the real program's, and the
# check of the macOS sources and of their configuration. Sanitized builds leave them to the plain ones.
if(VELTO_SANITIZE OR NOT VELTO_PROGRAM_TESTS)
    return()
endif()

# What the tests that say so depend on, files and folders: ./dev test leaves them out while nothing of
# that has changed since they passed (tools/selection). The others, which take a moment, always run.
set(page ${CMAKE_SOURCE_DIR}/resources)
set(page_configuration ${page}/package.json ${page}/package-lock.json ${page}/tsconfig.json
    ${page}/svelte.config.js ${page}/vite.config.ts ${page}/build)

# `node` is looked for on the PATH when the test runs: ./dev puts a new enough one there.
function(velto_page_test name script)
    add_test(NAME page.${name} COMMAND npm run --silent ${script}
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR}/resources)
    set_tests_properties(page.${name} PROPERTIES LABELS page TIMEOUT 1200)
endfunction()
velto_page_test(types check)
velto_page_test(logic test)
set_tests_properties(page.types page.logic PROPERTIES REQUIRED_FILES
    "${page_configuration};${page}/src;${page}/tests;${page}/index.html;${CMAKE_SOURCE_DIR}/docs/guide;${CMAKE_SOURCE_DIR}/packaging/notices")
add_test(NAME release.papers COMMAND node --test --test-reporter=spec
    ${CMAKE_CURRENT_SOURCE_DIR}/release/release.test.mjs)

add_test(NAME selection COMMAND node --test --test-reporter=spec
    ${CMAKE_CURRENT_SOURCE_DIR}/selection/selection.test.mjs)
set_tests_properties(selection PROPERTIES REQUIRED_FILES
    "${CMAKE_SOURCE_DIR}/tools/selection;${CMAKE_SOURCE_DIR}/tools/test.sh;${CMAKE_SOURCE_DIR}/tools/test_output.awk;${CMAKE_SOURCE_DIR}/tools/common.sh;${CMAKE_CURRENT_SOURCE_DIR}/selection")

if(APPLE)
    # Skipped in sight of everyone, each with its reason.
    function(velto_skipped name reason)
        add_test(NAME ${name} COMMAND ${CMAKE_COMMAND} -E echo "skipped on a Mac: ${reason}")
        set_tests_properties(${name} PROPERTIES SKIP_REGULAR_EXPRESSION "skipped on a Mac")
    endfunction()
    velto_skipped(page.browser "it drives Debian's Chromium")
    velto_skipped(e2e "it needs a virtual X display")
    velto_skipped(macos.typecheck "the compiler itself sees the macOS sources")
    velto_skipped(macos.configure "this build is configured for a Mac")
    return()
endif()

# The longest tests start first; a high cost is how CTest is told. The page is built already.
foreach(share IN ITEMS 1 2)
    add_test(NAME page.browser.${share} COMMAND node node_modules/vitest/vitest.mjs run --project page
        --shard=${share}/2 --maxWorkers=1 WORKING_DIRECTORY ${page})
    set_tests_properties(page.browser.${share} PROPERTIES LABELS page TIMEOUT 1200 COST 1000 REQUIRED_FILES
        "${page_configuration};${page}/dist;${page}/src;${page}/tests/page;${page}/tests/support")
endforeach()
set_tests_properties(page.types page.logic PROPERTIES COST 400)

# The debug build leaves out what only an optimising compiler can do.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
    add_test(NAME program.hardening COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/hardening_test.sh
        $<TARGET_FILE:velto> $<TARGET_OBJECTS:velto> ${CMAKE_BINARY_DIR}/compile_commands.json)
endif()

add_test(NAME packages.identifier COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/packages/identifier_test.sh
    ${CMAKE_CURRENT_BINARY_DIR}/identifier)
add_test(NAME packages.version COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/packages/version_test.sh
    $<TARGET_FILE:velto> ${CMAKE_BINARY_DIR} ${PROJECT_VERSION})
add_test(NAME packages.options COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/packages/options_test.sh
    $<TARGET_FILE:velto>)

# What the tests of the real program need besides it.
velto_system_package(GIO gio-unix-2.0)
add_executable(notification_service
    e2e/support/notification_service.cpp platform/linux/NotificationService.cpp
    platform/linux/ServiceOnBus.cpp)
target_link_libraries(notification_service
    PRIVATE PkgConfig::GIO nlohmann_json::nlohmann_json velto_options)
# Processes that the live view has to show.
add_executable(load e2e/support/load.cpp)
target_link_libraries(load PRIVATE Threads::Threads velto_options)
# A window to drag files and links from.
velto_system_package(GTK gtk4)
add_executable(drag_source e2e/support/drag_source.cpp)
target_link_libraries(drag_source PRIVATE PkgConfig::GTK velto_options)
add_executable(clipboard_text e2e/support/clipboard_text.cpp)
target_link_libraries(clipboard_text PRIVATE PkgConfig::GTK velto_options)
# What a screen reader asks of the page.
add_executable(screen_reader e2e/support/screen_reader.cpp)
target_link_libraries(screen_reader PRIVATE PkgConfig::GIO nlohmann_json::nlohmann_json velto_options)
add_custom_target(test_helpers
    DEPENDS notification_service load drag_source clipboard_text screen_reader)

# Scenarios that never show the page itself have a program without it, and so nothing to fear of a change of it.
set(scenarios_without_page attack_quit attack_state attack_window attack_window_reach bridge folders quit)
set(without_page ${CMAKE_CURRENT_BINARY_DIR}/without_page)
foreach(program IN ITEMS velto velto-icons)
    add_custom_command(OUTPUT ${without_page}/${program}
        COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_FILE:${program}> ${without_page}/${program}
        DEPENDS ${program} VERBATIM)
endforeach()
add_custom_target(velto_without_page ALL DEPENDS ${without_page}/velto ${without_page}/velto-icons)
add_dependencies(test_helpers velto_without_page)

set(helpers $<TARGET_FILE:notification_service> $<TARGET_FILE:load> $<TARGET_FILE:drag_source>
    $<TARGET_FILE:clipboard_text> $<TARGET_FILE:screen_reader>
    ${CMAKE_CURRENT_SOURCE_DIR}/e2e/support ${CMAKE_SOURCE_DIR}/tools/desktop)
set(window 0)
file(GLOB scenarios CONFIGURE_DEPENDS e2e/*.test.mjs)
foreach(scenario IN LISTS scenarios)
    get_filename_component(name ${scenario} NAME_WE)
    if(name IN_LIST scenarios_without_page)
        set(program ${without_page}/velto)
        set(needed ${program} ${without_page}/velto-icons)
    else()
        set(program $<TARGET_FILE:velto>)
        set(needed ${program} $<TARGET_FILE:velto-icons> ${CMAKE_BINARY_DIR}/Velto_velto_app.bundle)
    endif()
    add_test(NAME e2e.${name} COMMAND node --test --test-reporter=spec ${scenario})
    # Two windows at a time: they share the machine's cores, and each mostly waits for what it sees.
    math(EXPR window "1 - ${window}")
    set_tests_properties(e2e.${name} PROPERTIES
        LABELS e2e TIMEOUT 600 COST 500 RESOURCE_LOCK window.${window}
        REQUIRED_FILES "${scenario};${needed};${helpers}"
        ENVIRONMENT "VELTO_PROGRAM=${program};NOTIFICATION_SERVICE=$<TARGET_FILE:notification_service>;LOAD=$<TARGET_FILE:load>;DRAG_SOURCE=$<TARGET_FILE:drag_source>;CLIPBOARD_TEXT=$<TARGET_FILE:clipboard_text>;SCREEN_READER=$<TARGET_FILE:screen_reader>")
endforeach()

add_test(NAME macos.typecheck COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/macos_typecheck.sh)
add_test(NAME macos.configure COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/mac_configure.sh)
# It reads no other source of these folders.
set(read)
foreach(folder IN ITEMS analysis app bench bridge cleaning maintenance monitor platform settings tests uninstall)
    list(APPEND read ${CMAKE_SOURCE_DIR}/${folder}/*.h ${CMAKE_SOURCE_DIR}/${folder}/*.mm)
endforeach()
file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${read})
set_tests_properties(macos.typecheck macos.configure PROPERTIES LABELS macos COST 400)
set_tests_properties(macos.typecheck PROPERTIES REQUIRED_FILES
    "${sources};${CMAKE_CURRENT_SOURCE_DIR}/macos_typecheck")
