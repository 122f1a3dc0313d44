# Packages for Linux, made by CPack: `./dev package` calls it with everything that makes them the same
# bytes each time. On a Mac packaging/macos does its own.
set(VELTO_PACKAGE_RELEASE 1 CACHE STRING
    "What tells packages of one version apart, as \"1\" or \"1~deb12\"")
set(VELTO_HOMEPAGE "" CACHE STRING "Address of the project's pages, for packages and software centres")
set(VELTO_SCREENSHOTS "" CACHE STRING "Address of a folder like docs/guide, whose pictures software centres show")
# As Debian's own tools know who packages.
set(maintainer "The Velto authors <velto@packages.invalid>")
if(DEFINED ENV{DEBEMAIL} AND DEFINED ENV{DEBFULLNAME})
    set(maintainer "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>")
endif()
set(VELTO_MAINTAINER "${maintainer}" CACHE STRING "Whom the package names as its maintainer")
option(VELTO_DEBIAN_FILES "Install what only a .deb has: its own list of changes, notes to lintian" OFF)

if(APPLE)
    return()
endif()

set(CPACK_PACKAGE_NAME velto)
set(CPACK_PACKAGE_VENDOR "The Velto authors")
set(CPACK_PACKAGE_CONTACT "${VELTO_MAINTAINER}")
set(CPACK_PACKAGE_HOMEPAGE_URL "${VELTO_HOMEPAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "shows what fills the disk and helps to take space back")
set(CPACK_PACKAGE_DESCRIPTION
"Velto measures the home folder, sorts what it finds into six categories and
lists the largest files and the duplicates. What is removed goes to a trash of
its own first, from where every item can be put back.
.
It also uninstalls applications together with what they left behind, shows the
load of the machine, and can clean up by itself on a schedule.")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_MONOLITHIC_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_THREADS 0)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/cmake/package_files.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE ${VELTO_PACKAGE_RELEASE})
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Icons that are drawings; a session bus for one window only and for the schedule.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "librsvg2-common, dbus-user-session, adwaita-icon-theme")

set(CPACK_RPM_FILE_NAME RPM-DEFAULT)
string(REPLACE "~" "." CPACK_RPM_PACKAGE_RELEASE "${VELTO_PACKAGE_RELEASE}")
set(CPACK_RPM_PACKAGE_LICENSE MIT)
set(CPACK_RPM_PACKAGE_GROUP "Applications/System")
set(CPACK_RPM_PACKAGE_SUMMARY "Shows what fills the disk and helps to take space back")
string(REPLACE "\n.\n" "\n\n" CPACK_RPM_PACKAGE_DESCRIPTION "${CPACK_PACKAGE_DESCRIPTION}")
set(CPACK_RPM_PACKAGE_AUTOREQ ON)
# What other packages own, or make when it is not there.
set(share /usr/share)
set(CPACK_RPM_EXCLUDE_FROM_AUTO_FILELIST_ADDITION
    ${share}/applications ${share}/metainfo ${share}/icons ${share}/icons/hicolor
    ${share}/icons/hicolor/scalable ${share}/icons/hicolor/scalable/apps
    ${share}/icons/hicolor/symbolic ${share}/icons/hicolor/symbolic/apps
    ${share}/icons/hicolor/128x128 ${share}/icons/hicolor/128x128/apps
    ${share}/icons/hicolor/256x256 ${share}/icons/hicolor/256x256/apps
    ${share}/man ${share}/man/man1 ${share}/man/es ${share}/man/es/man1
    ${share}/bash-completion ${share}/bash-completion/completions
    ${share}/zsh ${share}/zsh/site-functions ${share}/zsh/vendor-completions
    ${share}/fish ${share}/fish/vendor_completions.d ${share}/doc)
# What the .deb recommends too. CPack has no variable for it, but hands rpmbuild any lines for the package's head.
set(CPACK_RPM_SPEC_MORE_DEFINE
"Recommends: librsvg2, adwaita-icon-theme
%define _build_id_links none
%define use_source_date_epoch_as_buildtime 1
%define clamp_mtime_to_source_date_epoch 1
%define _buildhost localhost")
include(CPack)
