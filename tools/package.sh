# The program as it is given to others. Sourced by ./dev.

run_package() {
    setup_build
    if on_mac; then
        build_page
        compile universal
        packaging/macos/disk_image.sh build/universal build/package
        return
    fi
    need_packages package
    build_page
    package_linux build/package
    source_archive build/package/packages
    say "Packages: build/package/packages"
    (cd build/package/packages && ls -1 -- *.deb *.rpm *.tar.xz)
}

# The day of the sources: what is made of them carries it, and is therefore the same each time.
source_date() {
    if [ -n "${SOURCE_DATE_EPOCH:-}" ]; then
        echo "$SOURCE_DATE_EPOCH"
    else
        git log -1 --format=%ct 2>/dev/null || stat -c %Y CHANGELOG.md
    fi
}

project_version() { sed -n 's/^project(velto VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt; }

# Packages of one version for several releases of a distribution differ in what they depend on, and so
# in their names: "1~deb12". VELTO_PACKAGE_NUMBER counts packages of the same version.
package_release() {
    local number=${VELTO_PACKAGE_NUMBER:-1}
    (
        # shellcheck source=/dev/null
        . /etc/os-release
        case $ID in
            debian) echo "$number~deb${VERSION_ID:-0}" ;;
            ubuntu) echo "$number~ubuntu$VERSION_ID" ;;
            *) echo "$number" ;;
        esac
    )
}

# Where the project's pages and the pictures of this version are; known to who publishes it (VELTO_REPOSITORY,
# "owner/name") and to nobody else.
homepage() { echo "${VELTO_REPOSITORY:+https://github.com/$VELTO_REPOSITORY}"; }
screenshots() {
    echo "${VELTO_REPOSITORY:+https://raw.githubusercontent.com/$VELTO_REPOSITORY/v$(project_version)/docs/guide}"
}

# package_linux FOLDER: builds there and leaves a .deb and a .rpm in FOLDER/packages.
package_linux() {
    local folder=$1 log=$logs/package.log
    SOURCE_DATE_EPOCH=$(source_date)
    export SOURCE_DATE_EPOCH
    umask 022
    say "Building the packages"
    rm -rf "$folder/packages"
    {
        cmake --preset package -B "$folder" -DVELTO_PACKAGE_RELEASE="$(package_release)" \
            "-DVELTO_HOMEPAGE=$(homepage)" "-DVELTO_SCREENSHOTS=$(screenshots)" &&
            cmake --build "$folder" --parallel "$(cores)" --target velto velto-icons page &&
            (for_each_packer "$folder")
    } >"$log" 2>&1 || {
        grep -A 12 -E '^FAILED|[Ee]rror' "$log" | head -n 40 >&2
        fail "the packages cannot be made (log: ${log#"$root"/})"
    }
    rm -rf "$folder/packages/_CPack_Packages"
    ! have dpkg-deb || pack_again "$folder"/packages/*.deb
}

for_each_packer() {
    cd "$1" &&
        { ! have dpkg-shlibdeps || cpack -G DEB; } &&
        { ! have rpmbuild || cpack -G RPM; }
}

# pack_again DEB: CPack packs files in the order and with the times in which it meets them.
pack_again() {
    local tree=$1.tree size
    rm -rf "$tree"
    dpkg-deb --raw-extract "$1" "$tree"
    # As Debian's own tools count: KiB begun of every file, and one for everything else.
    size=$(find "$tree" -path "$tree/DEBIAN" -prune -o -type f -printf '%s\n' -o -printf '1\n' |
        awk '{ sum += int(($1 + 1023) / 1024) } END { print sum }')
    sed -i "s/^Installed-Size: .*/Installed-Size: $size/" "$tree/DEBIAN/control"
    find "$tree" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
    dpkg-deb --root-owner-group -Zxz --threads-max=1 --build "$tree" "$1" >>"$logs/package.log"
    rm -rf "$tree"
}

# source_archive FOLDER: the sources as git has them, with the built page: what a distribution builds
# from needs neither Node nor a network.
source_archive() {
    local version name tree
    version=$(project_version)
    name=velto-$version
    tree=$(git stash create 2>/dev/null || true)
    local work=$root/build/source-archive
    rm -rf "$work"
    mkdir -p "$work"
    git archive --prefix="$name/" "${tree:-HEAD}" | tar -x -C "$work" ||
        fail "the source archive is made in a git working tree"
    mkdir -p "$work/$name/resources/dist"
    cp -r resources/dist/. "$work/$name/resources/dist/"
    tar -C "$work" --sort=name --mtime="@$(source_date)" --owner=0 --group=0 --numeric-owner \
        --mode=go=rX,u+rw --format=gnu -c "$name" | xz -T1 -6 >"$1/$name.tar.xz"
    rm -rf "$work"
}

# What the tools of Debian and of the desktops have to say about the packages, and whether they come out
# the same when they are built again somewhere else.
check_packages() {
    on_mac && return
    local failed=0 page
    say "The packages (lintian, desktop entry, metainfo, manual pages, the same bytes twice)"
    build_page
    package_linux build/package
    source_archive build/package/packages
    local made=build/package/packages
    lintian --fail-on error,warning "$made"/*.deb || failed=1
    tests/hardening_test.sh build/package/velto build/package/app/CMakeFiles/velto.dir/Unity/unity_0_cxx.cxx.o \
        build/package/compile_commands.json || failed=1
    local installed=build/package/checked
    rm -rf "$installed"
    dpkg-deb --extract "$made"/*.deb "$installed"
    desktop-file-validate "$installed"/usr/share/applications/*.desktop || failed=1
    # As a release has it, with the addresses that are known to who publishes it, and as it was just made.
    published_metainfo build/published &&
        appstreamcli validate --pedantic --no-net build/published/installed/share/metainfo/*.xml || failed=1
    local -a lenient=()
    if [ -z "${VELTO_REPOSITORY:-}" ] && ! appstreamcli --version | grep -q ' 0\.'; then
        lenient=(--override=url-homepage-missing=info)
    fi
    appstreamcli validate --pedantic --no-net ${lenient[@]+"${lenient[@]}"} "$installed"/usr/share/metainfo/*.xml || failed=1
    for page in "$installed"/usr/share/man/man1/velto.1.gz "$installed"/usr/share/man/es/man1/velto.1.gz; do
        LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" \
            2>"$logs/man.log" >/dev/null || failed=1
        [ ! -s "$logs/man.log" ] || { cat "$logs/man.log" && failed=1; }
    done
    rpm_lives build/package || failed=1
    tests/packages/reproducible.sh "$made" || failed=1
    return $failed
}

# published_metainfo FOLDER: what needs no compiler, installed in FOLDER/installed as a release of "owner/name" has it.
published_metainfo() {
    local VELTO_REPOSITORY=owner/name
    quietly published.log cmake --preset package -B "$1" "-DVELTO_HOMEPAGE=$(homepage)" \
        "-DVELTO_SCREENSHOTS=$(screenshots)"
    quietly published.log cmake --install "$1" --component desktop --prefix "$1/installed"
}

# rpm_lives FOLDER: the .rpm that was made there, and one with the next number, in a tree of their own.
rpm_lives() {
    if ! have rpmbuild; then
        echo "    skipped: no rpmbuild"
        return
    fi
    local next=$1/next-rpm
    rm -rf "$next"
    SOURCE_DATE_EPOCH=$(source_date) cpack -G RPM --config "$1/CPackConfig.cmake" -B "$next" \
        -D CPACK_RPM_PACKAGE_RELEASE=2 >"$logs/next-rpm.log" 2>&1 || {
        tail -n 20 "$logs/next-rpm.log"
        return 1
    }
    tests/packages/rpm_in_tree.sh "$1"/packages/*.rpm "$next"/*.rpm
}

try_packages() {
    [ "$(id -u)" -eq 0 ] || fail "only root can make and enter the trees"
    [ $# -gt 0 ] || set -- bookworm trixie
    need_packages trees
    setup_build
    build_page
    local archive=build/trees/source release
    mkdir -p "$archive"
    source_archive "$archive"
    for release in "$@"; do
        tests/packages/debian.sh "$release" "$archive/velto-$(project_version).tar.xz" "$(source_date)" \
            2>&1 | tee "$logs/package-$release.log"
    done
}
