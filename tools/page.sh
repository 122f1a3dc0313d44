# The page: its packages and its build. Sourced by ./dev.

# `npm ci` empties node_modules first, so the copy of the lock file in it tells what is installed.
need_page_packages() {
    local kept=resources/node_modules/.installed-lock
    cmp -s resources/package-lock.json "$kept" && return
    say "Installing the page's packages (npm ci)"
    (cd resources && npm ci --no-audit --no-fund) >"$logs/npm.log" 2>&1 ||
        fail "npm ci failed in resources: $(grep -i 'error' "$logs/npm.log" | tail -n 1)"
    cp resources/package-lock.json "$kept"
}

page_fingerprint() {
    (cd resources && fingerprint index.html src build ./*.json ./*.ts ./*.js ../LICENSE ../docs/guide ../packaging/notices)
}

build_page() {
    local stamp=build/stamps/page
    local now
    now=$(page_fingerprint)
    if [ -f resources/dist/index.html ] && [ "$now" = "$(cat "$stamp" 2>/dev/null)" ]; then
        return
    fi
    say "Building the page"
    mkdir -p build/stamps
    rm -f "$stamp"
    quietly page.log npm --prefix resources run build
    printf '%s\n' "$now" >"$stamp"
}
