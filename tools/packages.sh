# The packages that each task needs, and how they get here. Sourced by ./dev.

debian_build=(g++ cmake ninja-build pkg-config ccache
    libgtk-4-dev libwebkitgtk-6.0-dev libglib2.0-dev libicu-dev libssl-dev
    libplist-dev libgdk-pixbuf-2.0-dev
    libfmt-dev nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev)
debian_display=(xvfb dbus-daemon imagemagick fonts-dejavu-core adwaita-icon-theme)
debian_test=("${debian_display[@]}" at-spi2-core xdotool chromium-headless-shell clang libclang-rt-dev lld llvm strace
    procps sysstat lm-sensors iproute2 systemd packagekit polkitd
    btrfs-progs dosfstools e2fsprogs libfuse3-dev xfsprogs)
debian_package=(dpkg-dev file rpm git xz-utils)
debian_check=(clang clang-format clang-tidy shellcheck clang-19 libc++-19-dev libfuse3-dev
    "${debian_package[@]}" lintian desktop-file-utils appstream man-db)
debian_trees=(debootstrap)
debian_fuzz=(clang libclang-rt-dev llvm)
debian_bench=("${debian_display[@]}" time ncdu gdu jdupes fdupes rmlint)

mac_build=(cmake ninja pkgconf ccache fmt nlohmann-json googletest google-benchmark)
mac_check=(clang-format llvm shellcheck)
mac_bench=(ncdu gdu jdupes fdupes)

# need_packages TASK: installs what is missing for build, display, test, package, check, trees, fuzz
# or bench.
need_packages() {
    local -a wanted=()
    if on_mac; then
        case $1 in
            build) wanted=("${mac_build[@]}") ;;
            check) wanted=("${mac_check[@]}") ;;
            bench) wanted=("${mac_bench[@]}") ;;
        esac
        install_with_homebrew ${wanted[@]+"${wanted[@]}"}
    elif have apt-get; then
        case $1 in
            build) wanted=("${debian_build[@]}") ;;
            display) wanted=("${debian_display[@]}") ;;
            test) wanted=("${debian_test[@]}") ;;
            package) wanted=("${debian_package[@]}") ;;
            check) wanted=("${debian_check[@]}") ;;
            trees) wanted=("${debian_trees[@]}") ;;
            fuzz) wanted=("${debian_fuzz[@]}") ;;
            bench) wanted=("${debian_bench[@]}") ;;
        esac
        install_with_apt "${wanted[@]}"
    elif have dnf; then
        # shellcheck source=/dev/null
        . "$root/tools/packages_fedora.sh"
        install_with_dnf "$1"
    else
        fail "this machine has neither apt-get, dnf nor Homebrew: install the packages of tools/packages.sh by hand"
    fi
}

install_with_apt() {
    local -a missing=()
    local package
    for package in "$@"; do
        # A virtual or renamed package shows as not installed; the real names are listed above.
        if [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
            missing+=("$package")
        fi
    done
    [ ${#missing[@]} -eq 0 ] && return

    local -a as_root=(env DEBIAN_FRONTEND=noninteractive)
    if [ "$(id -u)" -ne 0 ]; then
        have sudo || fail "needs these packages and cannot become root: ${missing[*]}"
        as_root=(sudo "${as_root[@]}")
    fi
    say "Installing with apt: ${missing[*]}"
    local log=$logs/apt.log
    "${as_root[@]}" apt-get -q update >"$log" 2>&1 </dev/null ||
        fail "apt-get update failed: $(last_apt_error "$log")"
    "${as_root[@]}" apt-get -q install -y --no-install-recommends "${missing[@]}" \
        >>"$log" 2>&1 </dev/null ||
        fail "cannot install ${missing[*]}: $(last_apt_error "$log")"
}

last_apt_error() {
    { grep '^E:' "$1" || tail -n 1 "$1"; } | tail -n 1 || true
}

install_with_homebrew() {
    xcode-select -p >/dev/null 2>&1 ||
        fail "the command line tools are missing: run xcode-select --install"
    [ $# -eq 0 ] && return
    have brew || fail "Homebrew is missing, and these are needed: $*"
    local installed formula
    local -a missing=()
    installed=$(brew list --formula -1)
    for formula in "$@"; do
        grep -qx "$formula" <<<"$installed" || missing+=("$formula")
    done
    [ ${#missing[@]} -eq 0 ] && return
    say "Installing with Homebrew: ${missing[*]}"
    if ! brew install --quiet "${missing[@]}" >"$logs/brew.log" 2>&1; then
        fail "cannot install ${missing[*]}: $(grep -i '^Error' "$logs/brew.log" | tail -n 1)"
    fi
}

# The page's build tool needs Node 20.19, or 22.12 and newer. A machine's own Node is used when it
# is new enough; Debian's is not, so there the npm package that carries the binary is fetched into
# build/tools, beside an npm that goes with it. Leaves `node` and `npm` on the PATH.
node_version=22.23.3
npm_version=11.19.1
node_tools=$root/build/tools/node-$node_version

node_is_new_enough() {
    "$1" -e 'const [a, b] = process.versions.node.split(".").map(Number);
        process.exit((a === 20 && b >= 19) || (a === 22 && b >= 12) || a > 22 ? 0 : 1)' 2>/dev/null
}

need_node() {
    if have node && have npm && node_is_new_enough node; then
        return
    fi
    if on_mac; then
        install_with_homebrew node
        node_is_new_enough node || fail "the page needs Node 20.19, or 22.12 or newer: run brew upgrade node"
        return
    fi
    if [ ! -x "$node_tools/bin/npm" ]; then
        fetch_node
    fi
    PATH=$node_tools/bin:$PATH
    export PATH
    hash -r
}

fetch_node() {
    local machine
    case $(uname -m) in
        x86_64) machine=x64 ;;
        aarch64 | arm64) machine=arm64 ;;
        *) fail "no Node binary is published for $(uname -m): install Node 22 by hand" ;;
    esac
    have npm || install_with_apt npm
    say "Fetching Node $node_version for the page's tools (into build/tools)"
    rm -rf "$node_tools"
    mkdir -p "$node_tools/bin"
    npm install --prefix "$node_tools" --no-save --no-package-lock --no-audit --no-fund \
        "node-linux-$machine@$node_version" "npm@$npm_version" >"$logs/node.log" 2>&1 ||
        fail "cannot fetch Node $node_version from the npm registry: $(tail -n 1 "$logs/node.log")"
    ln -s "../node_modules/node-linux-$machine/bin/node" "$node_tools/bin/node"
    "$node_tools/bin/node" --version >/dev/null ||
        fail "the fetched Node does not run on this machine"
    ln -s ../node_modules/npm/bin/npm-cli.js "$node_tools/bin/npm"
    ln -s ../node_modules/npm/bin/npx-cli.js "$node_tools/bin/npx"
}

setup_build() {
    need_packages build
    need_node
    need_page_packages
}
