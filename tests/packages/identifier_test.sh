#!/usr/bin/env bash
# Another identifier reaches everything that is installed, and the program:
#   tests/packages/identifier_test.sh FOLDER
# Configures in FOLDER, which is emptied first, and installs what needs no compiler.
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
folder=$1
identifier=org.example.DiskTest
failed=0

wrong() {
    echo "$*" >&2
    failed=1
}

rm -rf "$folder"
cmake -S "$root" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVELTO_APP_ID=$identifier \
    -DVELTO_TESTS=OFF -DVELTO_PROGRAM_TESTS=OFF >"$folder.log" 2>&1 || {
    cat "$folder.log" >&2
    exit 1
}
cmake --install "$folder" --component desktop --prefix "$folder/installed" >>"$folder.log"
share=$folder/installed/share

for file in "applications/$identifier.desktop" "metainfo/$identifier.metainfo.xml" \
    "icons/hicolor/scalable/apps/$identifier.svg" "icons/hicolor/128x128/apps/$identifier.png" \
    "icons/hicolor/symbolic/apps/$identifier-symbolic.svg"; do
    [ -f "$share/$file" ] || wrong "not installed: $file"
done
grep -qx "Icon=$identifier" "$share/applications/$identifier.desktop" || wrong "the entry's icon"
grep -qx "StartupWMClass=$identifier" "$share/applications/$identifier.desktop" || wrong "the entry's window class"
find "$share" -name '*.gz' -exec gunzip --force {} +
# The guide names the usual one, and the lines that go with it.
grep -rl --exclude-dir=guide 'app\.velto' "$folder/installed" && wrong "the usual identifier is in these files"
find "$folder/installed" -name '*app.velto*' | grep . && wrong "the usual identifier names these files"

# In the program one source has it, and it alone.
object=platform/CMakeFiles/velto_platform.dir/values/program_identifier.cpp.o
cmake --build "$folder" --target "$object" >>"$folder.log"
grep -q "$identifier" "$folder/$object" || wrong "the program's own identifier"
# A Mac's agent keeps its label.
grep -rn '"[^"]*app\.velto' "$root"/{app,bridge,maintenance,monitor,uninstall,settings,platform} --include=*.cpp --include=*.h |
    grep -v -e HomeLayout_macOS -e 'agentLabel = ' -e '/// ' && wrong "these sources spell the identifier"

if cmake -S "$root" -B "$folder.refused" -G Ninja -DVELTO_APP_ID='disk test' >/dev/null 2>&1; then
    wrong "an identifier that is none is taken"
fi
rm -rf "$folder.refused"
exit $failed
