#!/usr/bin/env bash
# The life of the .rpm in an empty tree, with rpm's own database in it:
#   tests/packages/rpm_in_tree.sh RPM NEXT_RPM
# NEXT_RPM is the same version with the next number. Both are of this machine, whose libraries the program
# is started with: the tree has none. What only Fedora itself shows is left to it (smoke.sh): that its packages
# satisfy what is required here, and what its own packages do when others come and go (icons, menus).
set -euo pipefail
# The tree's root owns what is installed; outside of it nobody has to be root.
[ "$(id -u)" -eq 0 ] || exec unshare --map-root-user "$0" "$@"
sources=$(cd "$(dirname "$0")/../.." && pwd)
package=$(realpath "$1")
next=$(realpath "$2")
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
failed=0
wrong() {
    printf 'WRONG: %s\n' "$*"
    failed=1
}
# Debian's rpm wants to be told that this is meant.
forced=()
[ ! -e /etc/debian_version ] || forced=(--force-debian)
rpm_here() { rpm --root "$tree" "$@"; }
change_here() { rpm_here "${forced[@]}" "$@"; }
# Everything but directories and rpm's own records.
files_here() {
    find "$tree" \( -path "$tree/var/lib/rpm" -o -path "$tree/usr/lib/sysimage/rpm" -o -path "$tree$HOME/.rpmdb" \) \
        -prune -o ! -type d -printf '/%P\n' | LC_ALL=C sort
}
listed() { rpm -qpl "$1" | LC_ALL=C sort; }

# What a library belongs to on Fedora; tools/packages_fedora.sh has to name it, as the .rpm is built with it.
declare -A packaged=(
    [libc]=gcc-c++ [libm]=gcc-c++ [libgcc_s]=gcc-c++ [libstdc++]=gcc-c++ [ld-linux]=gcc-c++
    [libcrypto]=openssl-devel [libfmt]=fmt-devel [libgdk_pixbuf-2.0]=gdk-pixbuf2-devel
    [libgio-2.0]=glib2-devel [libglib-2.0]=glib2-devel [libgobject-2.0]=glib2-devel
    [libgtk-4]=gtk4-devel [libicui18n]=libicu-devel [libicuuc]=libicu-devel
    [libjavascriptcoregtk-6.0]=webkitgtk6.0-devel [libwebkitgtk-6.0]=webkitgtk6.0-devel
    [libplist-2.0]=libplist-devel [libsoup-3.0]=libsoup3-devel)

# shellcheck source=/dev/null
. "$sources/tools/packages_fedora.sh"
while read -r required; do
    case $required in rpmlib\(* | rtld\(*) continue ;; esac
    library=${required%%.so*}
    owner=${packaged[$library]:-}
    [ -n "$owner" ] || { wrong "requires what no package is known for: $required" && continue; }
    [[ " ${fedora_build[*]} " == *" $owner "* ]] || wrong "$owner is not among what is built with: $required"
done < <(rpm -qp --requires "$package")
[ -z "$(rpm -qp --scripts "$package")$(rpm -qp --triggers "$package")" ] || wrong "it runs scripts"
for wished in librsvg2 adwaita-icon-theme; do
    rpm -qp --recommends "$package" | grep -qx "$wished" || wrong "does not recommend $wished"
done
listed "$package" | grep -v '^/usr/' && wrong "files outside /usr"
# Directories that packages share are nobody's of this one.
rpm -qp --queryformat '[%{FILEMODES:perms} %{FILENAMES}\n]' "$package" | sed -n 's/^d[^ ]* //p' |
    grep -vE '/velto(/|$)' && wrong "it owns directories of others"
rpm -qp --queryformat '[%{FILEUSERNAME}:%{FILEGROUPNAME}\n]' "$package" | grep -vx root:root && wrong "files that are not root's"

rpm_here --initdb
if change_here --install --test "$package" 2>"$tree.refused"; then
    wrong "it installs where none of its libraries is"
fi
grep -q 'libwebkitgtk-6\.0.* is needed by velto' "$tree.refused" || wrong "rpm does not ask for the web engine"
rm -f "$tree.refused"

# life PACKAGE STEP...: what must hold of the package after the step.
life() {
    local now=$1
    shift
    change_here --nodeps "$@"
    [ "$(rpm_here --query velto)" = "$(rpm -qp "$now")" ] || wrong "installed is $(rpm_here --query velto)"
    rpm_here --verify --nodeps velto || wrong "rpm does not find the files as it has put them"
    files_here | LC_ALL=C comm -23 - <(listed "$now") | grep . && wrong "files that the package does not name"
    rpm_here --query --list velto | while read -r path; do
        [ -e "$tree$path" ] || [ -L "$tree$path" ] || echo "$path"
    done | grep . && wrong "not there"
    [ "$("$tree/usr/lib/velto/velto" --version)" = "Velto $(rpm -qp --queryformat '%{VERSION}' "$now")" ] ||
        wrong "the program does not start, or is of another version"
}
life "$package" --install "$package"
change_here --nodeps --upgrade "$package" 2>/dev/null && wrong "the same package upgrades itself"
life "$next" --upgrade "$next"
change_here --nodeps --upgrade "$package" 2>/dev/null && wrong "an older package replaces a newer one"
change_here --erase velto
files_here | grep . && wrong "left behind"
find "$tree" -name '*velto*' | grep . && wrong "traces in the tree"
[ $failed -eq 0 ] && echo "    installed, upgraded and erased: $(basename "$package"), $(basename "$next")"
exit $failed
