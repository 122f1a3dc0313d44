#!/usr/bin/env bash
# Makes Velto-VERSION.dmg, its dSYM archive and the cask from a finished universal build, looks over
# what it has made, and has it notarised where it can.
#
#   disk_image.sh BUILD OUTPUT
#
# VELTO_SIGNING_IDENTITY      identity of the image's signature, as for the build; without it the
#                             application is signed ad hoc and says so in the image's name
# VELTO_NOTARY_KEY            file of the App Store Connect key (.p8)
# VELTO_NOTARY_KEY_ID, VELTO_NOTARY_ISSUER
# VELTO_REPOSITORY            owner/name on GitHub, for the cask's addresses
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1
output=$2
identity=${VELTO_SIGNING_IDENTITY:-}
application=$build/Velto.app
version=$(plutil -extract CFBundleShortVersionString raw "$application/Contents/Info.plist")
name=Velto-$version
[ -n "$identity" ] || name+=-adhoc
image=$output/$name.dmg
mkdir -p "$output"

fail() {
    echo "disk_image: $*" >&2
    exit 1
}

# What no later step can mend.
look_over() {
    local program=$application/Contents/MacOS/velto
    [ "$(lipo -archs "$program" | tr ' ' '\n' | sort | xargs)" = "arm64 x86_64" ] ||
        fail "the program is not universal: $(lipo -archs "$program")"
    ! otool -L "$program" | grep -E '^[[:space:]]' | grep -vE '^[[:space:]](/System/Library|/usr/lib)/' ||
        fail "the program needs a library that no Mac brings"
    codesign --verify --strict --deep "$application"
    codesign --display --verbose "$application" 2>&1 | grep -q 'flags=.*runtime' ||
        fail "the runtime is not hardened"
    codesign --display --entitlements - --xml "$application" 2>/dev/null |
        grep -q get-task-allow && fail "a debugger may attach to it"
    return 0
}

make_image() {
    local stage
    stage=$(mktemp -d)
    ditto "$application" "$stage/Velto.app"
    ln -s /Applications "$stage/Applications"
    hdiutil create -ov -quiet -volname Velto -srcfolder "$stage" -fs HFS+ -format UDZO "$image"
    rm -rf "$stage"
    [ -z "$identity" ] || codesign --force --timestamp --sign "$identity" "$image"
}

notarise() {
    if [ -z "$identity" ]; then
        echo "signed ad hoc: a Mac opens it only after its owner has allowed it, and every update loses Full Disk Access"
        return
    fi
    if [ -z "${VELTO_NOTARY_KEY:-}" ]; then
        echo "not notarised: no key was given"
        return
    fi
    xcrun notarytool submit "$image" --wait --key "$VELTO_NOTARY_KEY" \
        --key-id "$VELTO_NOTARY_KEY_ID" --issuer "$VELTO_NOTARY_ISSUER"
    xcrun stapler staple "$image"
    spctl --assess --type open --context context:primary-signature --verbose "$image"
}

make_cask() {
    local sum
    sum=$(shasum -a 256 "$image" | cut -d' ' -f1)
    sed -e "s|@VERSION@|$version|" -e "s|@SHA256@|$sum|" -e "s|@FILE@|$(basename "$image")|" \
        -e "s|@REPOSITORY@|${VELTO_REPOSITORY:-}|" "$here/velto.rb.in" >"$output/velto.rb"
}

look_over
make_image
notarise
make_cask
ditto -c -k --keepParent "$build/Velto.dSYM" "$output/$name.dSYM.zip"
echo "made $image"
