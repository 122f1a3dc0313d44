# The application as it is given to others. Sourced by ./dev.

# On Linux `cmake --install` lays out the package (docs/development.md).
run_package() {
    on_mac || fail "the disk image can only be made on a Mac"
    setup_build
    build_page
    compile universal
    packaging/macos/disk_image.sh build/universal build/package
}
