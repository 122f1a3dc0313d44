#!/usr/bin/env bash
# Installs a package on the machine that this runs on, as root, looks whether the program starts there,
# and removes it again. For machines that are thrown away afterwards:
#   tests/packages/smoke.sh PACKAGE [VERSION]
# Without VERSION the package has to be of the version of these sources.
set -euo pipefail
package=$(realpath "$1")
sources=$(dirname "$0")/../../CMakeLists.txt
version=${2:-$(sed -n 's/^project(velto VERSION \([0-9.]*\).*/\1/p' "$sources")}

fail() {
    echo "smoke: $*" >&2
    exit 1
}

case $package in
    *.deb)
        install=(apt-get install -y --no-install-recommends "$package")
        remove=(apt-get remove -y velto)
        list=(dpkg -L velto)
        apt-get -q update
        ;;
    *.rpm)
        install=(dnf install -y --setopt=install_weak_deps=False "$package")
        remove=(dnf remove -y velto)
        list=(rpm -ql velto)
        ;;
    *) fail "neither a .deb nor a .rpm: $package" ;;
esac

! command -v velto >/dev/null || fail "velto is installed already"
"${install[@]}"
[ "$(velto --version)" = "Velto $version" ] || fail "it says it is $(velto --version)"

files=$("${list[@]}")
for wanted in /lib/velto/velto-icons /index.html /NOTICES.txt /guide-en.js /guide-es.js .desktop .metainfo.xml; do
    grep -qF -- "$wanted" <<<"$files" || fail "nothing in the package ends in $wanted"
done
program=$(realpath "$(command -v velto)")
for binary in "$program" "$(dirname "$program")/velto-icons"; do
    ! ldd "$binary" | grep 'not found' || fail "$binary wants a library that the package does not bring along"
done

"${remove[@]}"
! command -v velto >/dev/null || fail "the command is still there"
while read -r file; do
    [ -d "$file" ] && continue
    [ ! -e "$file" ] || fail "left behind: $file"
done <<<"$files"
echo "smoke: installed, started and removed"
