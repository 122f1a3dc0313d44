# The builds that ./dev test makes compile several sources as one, with precompiled headers: what the
# sources of a folder share, their headers and the templates that they make use of, is compiled once for
# all of them and not anew for each, which is most of what a cold build does. -DCMAKE_UNITY_BUILD=OFF gives
# every source its own object again. The debug build does that, and clang-tidy, both in ./dev check: there no
# source gets away with a missing include.
option(VELTO_COMPILE_TOGETHER "Compile several sources as one, with precompiled headers" OFF)
if((VELTO_SANITIZE OR VELTO_COMPILE_TOGETHER) AND NOT APPLE)
    set(VELTO_COMPILE_TOGETHER ON)
    set(CMAKE_UNITY_BUILD ON CACHE BOOL "Compile several sources as one")
    set(CMAKE_UNITY_BUILD_BATCH_SIZE 10 CACHE STRING "How many at most")
else()
    set(VELTO_COMPILE_TOGETHER OFF)
endif()

# Sources whose unnamed namespaces have a name in common with another source's of the same library
# or program. The compiler says so (redefinition, ambiguity): give the thing a name that tells the
# two apart, or the source a place here.
set(compiled_alone
    platform/icon_theme platform/posix/Descent platform/posix/PosixFileManager
    platform/posix/PosixToolRunner platform/posix/TreeComparison platform/posix/TreeCopy
    platform/posix/folders platform/posix/own_folder platform/posix/temporary_file
    platform/posix/volume_move platform/values/path_text
    platform/linux/JsonUserDefaults platform/linux/LinuxNotifications
    platform/linux/application_unit platform/linux/flatpak_instances
    platform/linux/icon_theme_name platform/linux/installed_applications
    platform/linux/kernel_file platform/linux/launchers platform/linux/mount_table
    platform/linux/process_files platform/linux/thermal_zones
    platform/linux/with_libplist/read_property_list
    cleaning/CloudFolder cleaning/TrashRecovery_sides
    analysis/ExclusionService analysis/MeasurementFile analysis/folders/FolderCache
    analysis/folders/folder_file analysis/growth/thinning
    uninstall/InstalledNames uninstall/PackageRemoval uninstall/app_images
    uninstall/desktop_leftovers uninstall/kept_places uninstall/leftover_search
    monitor/process_groups
    app/window/window_rules
    tests/support/ModelFileCalls tests/support/ModelFileCalls_content
    tests/support/ModelFileCalls_names tests/support/made_property_list
    tests/platform/HomeLayout_test tests/platform/linux/IconWorkers_test
    tests/platform/linux/LinuxWorkspace_test tests/platform/linux/Snapd_test
    tests/platform/linux/read_desktop_entry_test
    tests/platform/linux/live_counters_test tests/platform/linux/network_interfaces_test tests/platform/posix/PosixFileManager_test
    tests/platform/posix/changing_source_test tests/platform/posix/own_folder_test
    tests/platform/posix/removal_test
    tests/cleaning/CloudFolder_crash_test tests/cleaning/DupFinder_budget_test
    tests/cleaning/known_caches_test tests/cleaning/trash_fault_test
    tests/cleaning/trash_left_behind_test
    tests/analysis/folders/FolderCache_test tests/analysis/growth/thinning_test
    tests/analysis/ScannerService_progress_test
    tests/maintenance/MaintenanceScheduler_test tests/maintenance/SystemTrash_test
    tests/uninstall/removal_folder_test tests/uninstall/removal_rules_test
    tests/attack/linux/race_test
    tests/filesystems/linux/trash_on_volumes_test tests/filesystems/linux/volumes_of_every_kind)

# Says to CMake which sources of the target stay alone.
function(velto_compile_alone target)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        cmake_path(ABSOLUTE_PATH source OUTPUT_VARIABLE path)
        cmake_path(RELATIVE_PATH path BASE_DIRECTORY ${CMAKE_SOURCE_DIR})
        cmake_path(REMOVE_EXTENSION path)
        if(path IN_LIST compiled_alone)
            set_source_files_properties(${source} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
        endif()
    endforeach()
endfunction()
