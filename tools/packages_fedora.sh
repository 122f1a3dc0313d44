# What building needs on Fedora, and how it gets here. Sourced by packages.sh where there is dnf.

fedora_build=(gcc-c++ cmake ninja-build pkgconf-pkg-config ccache nodejs nodejs-npm gzip
    gtk4-devel webkitgtk6.0-devel glib2-devel libicu-devel openssl-devel libsoup3-devel
    libplist-devel gdk-pixbuf2-devel
    fmt-devel json-devel gtest-devel gmock-devel google-benchmark-devel rpm-build)

# install_with_dnf TASK: the tests of the page and of the window, the benchmarks and the checks are
# Debian's to run.
install_with_dnf() {
    [ "$1" = build ] || fail "on Fedora there are packages for building alone, not for: $1"
    local -a missing=()
    local package
    for package in "${fedora_build[@]}"; do
        rpm -q --quiet --whatprovides "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return

    local -a as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        have sudo || fail "needs these packages and cannot become root: ${missing[*]}"
        as_root=(sudo)
    fi
    say "Installing with dnf: ${missing[*]}"
    ${as_root[@]+"${as_root[@]}"} dnf install -y --setopt=install_weak_deps=False "${missing[@]}" \
        >"$logs/dnf.log" 2>&1 </dev/null ||
        fail "cannot install ${missing[*]}: $(tail -n 1 "$logs/dnf.log")"
}
