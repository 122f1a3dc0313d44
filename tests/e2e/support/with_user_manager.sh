#!/bin/sh
# with_user_manager.sh RUNTIME_FOLDER COMMAND...: runs the command beside a systemd user manager of
# its own, for the HOME of the environment, in a private mount namespace. Ends with status 77 where
# the machine has no systemd or makes no such namespace.
if [ "$WITH_USER_MANAGER" != inside ]; then
    [ -x /lib/systemd/systemd ] || exit 77
    unshare --mount --propagation private true 2>/dev/null || exit 77
    WITH_USER_MANAGER=inside exec unshare --mount --propagation private "$0" "$@"
fi
XDG_RUNTIME_DIR=$1
export XDG_RUNTIME_DIR
shift
chmod 700 "$XDG_RUNTIME_DIR"
mount -t tmpfs tmpfs /run || exit 77
mkdir -p /run/systemd/system # how systemd tells that it is the machine's init
DISPLAY='' /lib/systemd/systemd --user --log-target=null >/dev/null 2>&1 &
manager=$!
tries=0
until systemctl --user is-system-running >/dev/null 2>&1; do
    kill -0 $manager 2>/dev/null || exit 77
    tries=$((tries + 1))
    [ $tries -lt 200 ] || exit 77
    sleep 0.1
done
"$@"
status=$?
systemctl --user exit >/dev/null 2>&1
wait $manager
exit $status
