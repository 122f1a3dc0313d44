#!/usr/bin/env bash
# Inside a tree (life_in_tree.sh), as a plain user: one step by its name.
set -euo pipefail
export HOME=/home/person USER=person LANG=C.UTF-8 XDG_RUNTIME_DIR=/tmp/person-runtime
mkdir -p "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
cd "$HOME"
say() { printf '  - %s\n' "$*"; }
fail() {
    printf 'WRONG: %s\n' "$*"
    exit 1
}

# until_true SECONDS COMMAND...: a net for what never comes.
until_true() {
    local left=$(($1 * 5))
    shift
    until "$@"; do
        left=$((left - 1))
        [ $left -gt 0 ] || return 1
        sleep 0.2
    done
}

# What systemd notes of a timer that catches up is part of the schedule.
stamp=./.local/share/systemd/timers/stamp-app.velto.maintenance.timer

sums() { find . \( -path ./.local/share/Velto -o -path ./.config -o -path ./.cache -o -path "$stamp" \) -prune -o -type f -print0 | sort -z | xargs -0 sha256sum; }

furnish() {
    mkdir -p Documents Downloads .config .local/share .cache/app .local/share/applications
    echo "Dear reader" >Documents/letter.txt
    ln -s Documents/letter.txt link
    local name
    for name in a b; do head -c 3000000 /dev/zero | tr '\0' x >"Documents/$name.bin"; done
    head -c 60000000 /dev/urandom >Downloads/film.mkv
    head -c 2000000 /dev/urandom >.cache/app/blob
    mkdir -p .npm/_cacache/content-v2
    head -c 20000000 /dev/urandom >.npm/_cacache/content-v2/blob
    touch -d '2 years ago' Downloads/film.mkv
    sums >/tmp/sums
    find . | sort >/tmp/paths
}

ends_with_version() {
    say "$(velto --version)"
    [ "Velto $(dpkg-query -W -f '${Version}' velto | sed 's/-.*//')" = "$(velto --version)" ] ||
        fail "the program says another version than its package"
}

desktop() {
    # The engine's sandbox needs namespaces, which a container may refuse.
    bwrap --unshare-pid --unshare-uts --unshare-net --die-with-parent --ro-bind / / --dev /dev --proc /proc \
        true 2>/dev/null || export WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS=1
    Xvfb :7 -screen 0 1180x760x24 -nolisten tcp -noreset >/dev/null 2>&1 &
    export DISPLAY=:7
    until_true 30 test -S /tmp/.X11-unix/X7 || fail "no virtual display"
    exec {bus}< <(exec dbus-daemon --session --nofork --print-address=1 2>/dev/null)
    read -r DBUS_SESSION_BUS_ADDRESS <&$bus
    export DBUS_SESSION_BUS_ADDRESS
}

start_velto() {
    log=/tmp/person-velto.log
    : >"$log"
    velto "$@" 2>"$log" &
    velto=$!
}

end_velto() {
    kill -TERM "$velto"
    wait "$velto" || fail "velto ended with status $? after TERM"
}

logged() { grep -qF "$1" "$log"; }
expect_logged() { until_true 90 logged "$1" || { tail -n 20 "$log" && fail "no line \"$1\""; }; }

window_of_velto() { xwininfo -root -tree | grep -qE '"Velto": \("app\.velto" "app\.velto"\)'; }

opens_window() {
    desktop
    start_velto --analyze
    until_true 60 window_of_velto || { xwininfo -root -tree && tail -n 5 "$log" && fail "no window with the identifier's class"; }
    expect_logged 'intención: webReady'
    expect_logged 'Velto ▶ análisis terminado: '
    expect_logged 'intención: scan'
    velto --trash 2>/dev/null || fail "the second velto did not hand over"
    expect_logged 'intención: goView'
    end_velto
    say "the window opens, analyzes, and takes a command from a second start; its windows are app.velto"
}

user_manager() {
    systemd=/usr/lib/systemd/systemd
    [ -x $systemd ] || systemd=/lib/systemd/systemd
    DISPLAY='' $systemd --user --log-target=null >/dev/null 2>&1 &
    manager=$!
    until_true 20 manager_answers || return 1
}
manager_answers() { kill -0 "$manager" 2>/dev/null && systemctl --user show-environment >/dev/null 2>&1; }
end_manager() {
    systemctl --user exit >/dev/null 2>&1 || kill "$manager"
    wait "$manager" 2>/dev/null || true
}

# The page posts what its switch does (life_in_tree.sh).
switches_maintenance_on() {
    [ ! -e .config/systemd/user/app.velto.maintenance.timer ] || fail "a schedule that nobody asked for"
    desktop
    user_manager || fail "no manager of the user's units starts here"
    start_velto --debug-log
    expect_logged 'intención: webReady'
    expect_logged 'intención: found payload: '
    grep -F 'intención: found payload: ' "$log" | grep -qw npm || { grep -F "found payload" "$log"; fail "the rules do not find the cache of npm"; }
    until_true 60 test -e .config/systemd/user/app.velto.maintenance.timer || { tail -n 20 "$log" && fail "no timer"; }
    until_true 30 systemctl --user is-active --quiet app.velto.maintenance.timer || fail "the timer does not run"
    end_velto
    grep -q '^ConditionFileIsExecutable=/usr/lib/velto/velto$' .config/systemd/user/app.velto.maintenance.service ||
        fail "the service does not name the installed program"
    end_manager
    say "the rules find what they name; maintenance is on: the timer runs"
}

maintenance_runs() {
    user_manager || fail "no manager of the user's units starts here"
    systemctl --user start app.velto.maintenance.service || fail "the service of the older package fails"
    [ "$(systemctl --user show -P ConditionResult app.velto.maintenance.service)" = yes ] || fail "the service was skipped"
    end_manager
    say "the schedule starts the newer program"
}

schedule_does_nothing() {
    [ -e .config/systemd/user/app.velto.maintenance.timer ] || fail "the schedule is gone, and nothing is tried"
    user_manager || fail "no manager of the user's units starts here"
    systemctl --user start app.velto.maintenance.service || fail "the service of a removed program fails"
    [ "$(systemctl --user show -P ConditionResult app.velto.maintenance.service)" = no ] || fail "the condition held"
    [ -z "$(systemctl --user list-units --failed --plain --no-legend)" ] || fail "failed units"
    end_manager
    say "the schedule of the removed program does nothing and does not fail"
}

home_is_untouched() {
    sums | diff /tmp/sums - || fail "files of the person have changed"
    find . | sort | comm -13 /tmp/paths - |
        grep -vE '^\./\.(local/share/Velto|config/velto|config/systemd|local/share/systemd)(/|$)' >/tmp/new || true
    say "the person's files are untouched; beside the program's data, settings and schedule there is new:"
    sed 's/^/      /' /tmp/new
    grep -v '^\./\.cache/' /tmp/new && fail "new outside the cache"
    return 0
}

"$@"
