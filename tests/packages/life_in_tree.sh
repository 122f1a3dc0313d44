#!/usr/bin/env bash
# Inside a tree (debian.sh), as its root: installs the package, has a person use it, upgrades it,
# removes it, and looks at what is left.
set -euo pipefail
say() { printf '==> %s\n' "$*"; }
failed=0
wrong() {
    printf 'WRONG: %s\n' "$*"
    failed=1
}
person() { setpriv --reuid=1000 --regid=1000 --clear-groups --inh-caps=-all /shared/as_user_in_tree.sh "$@"; }
# The step has what a manager of the user's units asks for: control groups that it may divide, and the
# mark of a machine whose init is systemd.
with_units() {
    local hierarchy group
    local -a groups=()
    for hierarchy in /sys/fs/cgroup /sys/fs/cgroup/systemd /sys/fs/cgroup/unified; do
        [ -e $hierarchy/cgroup.procs ] || continue
        group=$hierarchy/velto-try
        mkdir -p $group
        chown -R 1000:1000 $group
        groups+=("$group")
    done
    mkdir -p /run/systemd/system
    local status=0
    (
        for group in "${groups[@]}"; do echo $BASHPID >"$group/cgroup.procs"; done
        "$@"
    ) || status=$?
    rmdir /run/systemd/system
    for group in "${groups[@]}"; do
        find "$group" -depth -type d -exec rmdir {} + 2>/dev/null || true
    done
    return $status
}

# For this step alone the page has a script beside it that posts what its switch for maintenance does, asks what
# the rules find, and has the answer written to the log.
with_switching_page() {
    local bundle=/usr/share/velto/Velto_velto_app.bundle
    cp -r $bundle /tmp/bundle
    cat >/tmp/bundle/switch.js <<'SCRIPT'
const post = (type, payload) => window.webkit.messageHandlers.velto.postMessage({ type, payload });
function ask() {
  const told = window.velto?.onFurtherCleanables;
  if (!told) return setTimeout(ask, 50);
  window.velto.onFurtherCleanables = (further) => {
    told(further);
    post('found', further.groups.map(({ rule }) => rule.id).join(' '));
  };
  post('scanFurther');
}
window.addEventListener('load', () => {
  post('settings', { enabled: true, frequency: 'daily' });
  ask();
});
SCRIPT
    sed -i 's|</head>|<script defer src="switch.js"></script></head>|' /tmp/bundle/index.html
    chmod -R a+rX /tmp/bundle
    mount --bind /tmp/bundle $bundle
    "$@"
    umount $bundle
}
apt_quietly() { apt-get -q -y "$@" >/tmp/apt.log 2>&1 || { tail -n 20 /tmp/apt.log && exit 1; }; }

say "The person's machine"
apt_quietly update
apt_quietly install --no-install-recommends xvfb xauth dbus-daemon systemd procps fonts-dejavu-core \
    x11-utils hicolor-icon-theme
useradd --uid 1000 --create-home person
person furnish

say "Installing: apt install ./velto.deb"
apt_quietly install --no-install-recommends /shared/velto.deb
dpkg-query -W -f '${Package} ${Version} installed, ${Installed-Size} KiB\n' velto
dpkg -V velto || wrong "dpkg does not find the files as it has put them"
dpkg -L velto | grep -vE '^/(\.|usr(/|$))' && wrong "files outside /usr"
person ends_with_version
person opens_window
with_switching_page with_units person switches_maintenance_on

say "Upgrading"
before=$(dpkg-query -W -f '${Version}' velto)
apt_quietly install --no-install-recommends /shared/next.deb
after=$(dpkg-query -W -f '${Version}' velto)
dpkg --compare-versions "$before" lt "$after" || wrong "$after does not replace $before"
echo "$before -> $after"
with_units person maintenance_runs
person opens_window

say "Removing: apt purge velto"
dpkg -L velto | grep -v '^/\.$' >/tmp/owned
apt_quietly purge velto
while read -r path; do
    [ -d "$path" ] || [ ! -e "$path" ] || wrong "left behind: $path"
done </tmp/owned
find / -xdev \( -path /proc -o -path /sys -o -path /dev -o -path /shared -o -path /home -o -path /tmp \
    -o -path /var/log -o -path /build \) -prune -o -iname '*velto*' -print >/tmp/traces
grep -rlI 'app\.velto' /usr/share/applications /usr/share/icons /usr/share/metainfo /etc /var/lib/systemd \
    >>/tmp/traces 2>/dev/null || true
if [ -s /tmp/traces ]; then
    wrong "traces on the system:"
    cat /tmp/traces
fi
with_units person schedule_does_nothing
person home_is_untouched
[ $failed -eq 0 ] && say "All of it as it has to be"
exit $failed
