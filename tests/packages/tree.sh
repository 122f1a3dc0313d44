# shellcheck shell=bash disable=SC2154
# Trees of a Debian release to install and build in, without a container. Sourced; `root` is set.
# A release's tree is made once by debootstrap (build/trees/RELEASE) and never changed again: work is
# done in a layer over it that goes with the work.

trees=$root/build/trees

mirror() { # the one that this machine uses
    { grep -hEo '^(URIs: |deb )(.*)' /etc/apt/sources.list.d/*.sources /etc/apt/sources.list 2>/dev/null || true; } |
        grep -Eo 'https?://[^ ]+/debian/?( |$)' | head -n 1 | grep . || echo http://deb.debian.org/debian
}

# pristine_tree RELEASE: makes it where it is missing.
pristine_tree() {
    local tree=$trees/$1
    [ -f "$tree/made" ] && return
    mkdir -p "$trees"
    debootstrap --variant=minbase --include=ca-certificates "$1" "$tree" "$(mirror)"
    cat >"$tree/etc/apt/sources.list" <<TEXT
deb $(mirror) $1 main
TEXT
    touch "$tree/made"
}

# layer RELEASE NAME: a layer over the tree, empty at first unless it is kept. Prints its folder; it is
# mounted by `enter`.
layer() {
    local folder=$trees/$1-$2
    mkdir -p "$folder/changed" "$folder/work" "$folder/tree"
    echo "$1" >"$folder/release"
    echo "$folder"
}

# enter LAYER [WITHOUT_NETWORK] COMMAND...: runs the command in the tree with its layer, as root of the
# tree, with the mounts gone when it ends. `shared` in the tree is LAYER/shared.
enter() {
    local layer=$1
    shift
    local -a apart=(unshare --mount --pid --fork --kill-child --ipc)
    if [ "$1" = WITHOUT_NETWORK ]; then
        apart+=(--net)
        shift
    fi
    mkdir -p "$layer/shared"
    # shellcheck disable=SC2016
    "${apart[@]}" bash -euc '
        layer=$0
        tree=$layer/tree
        mount --make-rprivate /
        mount -t overlay overlay \
            -o "lowerdir=$1,upperdir=$layer/changed,workdir=$layer/work" "$tree"
        mount -t proc proc "$tree/proc"
        mount --rbind /sys "$tree/sys"
        mount --rbind /dev "$tree/dev"
        mount -t tmpfs tmpfs "$tree/dev/shm"
        mount -t tmpfs tmpfs "$tree/run"
        mount -t tmpfs tmpfs "$tree/tmp"
        chmod 1777 "$tree/tmp" "$tree/dev/shm"
        mkdir -p "$tree/shared"
        mount --bind "$layer/shared" "$tree/shared"
        cat /etc/resolv.conf >"$tree/etc/resolv.conf"
        shift
        exec chroot "$tree" /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root \
            LANG=C.UTF-8 TERM=dumb DEBIAN_FRONTEND=noninteractive "$@"
    ' "$layer" "$trees/$(cat "$layer/release")" "$@"
}
