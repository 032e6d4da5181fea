# Sourced by the tests that install the package into a separate Debian root. All of it is gone when they end.
# shellcheck shell=bash disable=SC2034,SC2174  # what is left for others

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)
repository=${here%/*/*}
scratch=
# shellcheck source=tests/package/check.sh
source "$here/check.sh"

# The status with which CTest counts a test as skipped.
skip() {
    echo "skipped: $*"
    exit 77
}

# Leaves a fresh root folder in `root`.
fresh_root() {
    local said
    ((EUID == 0)) || skip "only root may make a Debian root"
    said=$(bwrap --ro-bind / / --unshare-pid --unshare-net --unshare-cgroup true 2>&1) || skip "no namespaces: $said"
    mkdir -p "$repository/build"
    # Tests run side by side; one of them makes it.
    said=$(flock "$repository/build/root-amd64.lock" "$repository/scripts/root-amd64" 2>&1) ||
        skip "no Debian root: ${said##*$'\n'}"
    scratch=$(mktemp -d "$repository/build/package-test.XXXXXX")
    trap clean_up EXIT
    root=$scratch/root
    mkdir "$root"
    tar --extract --file="$repository/build/root-amd64.tar" --directory="$root"
    echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/kelm-test"
}

# A test that has more to take away than its processes and files has a function leave_nothing.
clean_up() {
    [[ ! ${sandbox_pid-} ]] || { kill -KILL "$sandbox_pid" && wait "$sandbox_pid"; } 2>/dev/null || true
    [[ $(type -t leave_nothing) != function ]] || leave_nothing
    [[ ! $scratch ]] || rm -rf "$scratch"
}

# packages_of BUILD_FOLDER: leaves in `packages` the folder in which pack puts a folder of packages for each version, and
# in `package` the daemon's first one.
packages_of() {
    packages=$1/package-test
    package=$(echo "$packages"/0.1.0/kelm-trd_*.deb)
}

# sandbox OPTION... COMMAND...: a command in the root, alone with itself. Its root is root and may become others.
sandbox() {
    bwrap --bind "$root" / --dev /dev --proc /proc --ro-bind /proc/sys /proc/sys --tmpfs /sys --tmpfs /run \
        --perms 1777 --tmpfs /tmp --ro-bind "$here" /mnt --ro-bind "$packages" /media --chdir / \
        --unshare-pid --unshare-net --unshare-ipc --unshare-uts --unshare-cgroup --hostname stb --cap-add ALL \
        --die-with-parent --clearenv --setenv PATH /usr/sbin:/usr/bin:/sbin:/bin --setenv LC_ALL C.UTF-8 "$@"
}

# go_inside BUILD_FOLDER: leaves the rest of the script to itself inside a fresh root, which has the packages in /media.
go_inside() {
    [[ $1 != --inside ]] || return 0
    fresh_root
    packages_of "$1"
    sandbox -- bash "/mnt/${0##*/}" --inside
    exit
}

# boot OPTION... COMMAND...: a sandbox whose first process is the command, which stays. See inside.
boot() {
    sandbox --as-pid-1 --info-fd 3 "$@" 3>"$scratch/info" >"$scratch/log" 2>&1 </dev/null &
    within 10 grep -q child-pid "$scratch/info" || skip "no box: $(cat "$scratch/log")"
    sandbox_pid=$(sed -n 's/.*"child-pid": \([0-9]*\).*/\1/p' "$scratch/info")
}

# A command in what was booted.
inside() {
    nsenter --target "$sandbox_pid" --mount --uts --ipc --net --pid --cgroup -- \
        env -i --chdir=/ PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        DBUS_SESSION_BUS_ADDRESS="$DBUS_SESSION_BUS_ADDRESS" "$@"
}

# The same with the words of check.sh, the daemon's methods among them.
ask() {
    inside bash -c '. /mnt/check.sh; "$@"' bash "$@"
}

# In a root without systemd these do with a unit's file what it would, as far as it goes without one.

# unit_values UNIT KEY: one per line, a leading "-" left out.
unit_values() { sed -n "s/^$2=-\{0,1\}//p" "/usr/lib/systemd/system/$1.service"; }

# shellcheck disable=SC2046,SC1090  # words; files that the unit names
run_unit() { # run_unit UNIT: becomes the daemon, in the unit's environment
    local file
    export $(unit_values "$1" Environment)
    set -a
    for file in $(unit_values "$1" EnvironmentFile); do
        [[ ! -e $file ]] || source "$file"
    done
    bash -ec "$(unit_values "$1" ExecStartPre)"
    # A script's background jobs ignore SIGINT; systemd's do not.
    exec env --default-signal=INT $(unit_values "$1" ExecStart)
}

declare -A unit_pids
start_unit() {
    local folder
    folder=$(unit_values "$1" RuntimeDirectory)
    [[ ! $folder ]] || mkdir -p -m "$(unit_values "$1" RuntimeDirectoryMode)" "/run/$folder"
    run_unit "$1" >"/tmp/$1.log" 2>&1 </dev/null &
    unit_pids[$1]=$!
}

# With the status of the daemon.
stop_unit() {
    local signal
    signal=$(unit_values "$1" KillSignal)
    kill -s "${signal:-SIGTERM}" "${unit_pids[$1]}"
    wait "${unit_pids[$1]}"
}
