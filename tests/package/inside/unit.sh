# Sourced inside the root: does with a unit's file what systemd would, as far as it goes without one.
# shellcheck shell=bash disable=SC2174

readonly units=/usr/lib/systemd/system

# unit_values UNIT KEY: one per line, a leading "-" left out.
unit_values() { sed -n "s/^$2=-\{0,1\}//p" "$units/$1.service"; }

declare -A unit_pids

prepare_unit() {
    local folder
    folder=$(unit_values "$1" RuntimeDirectory)
    [[ ! $folder ]] || mkdir -p -m "$(unit_values "$1" RuntimeDirectoryMode)" "/run/$folder"
}

run_unit() { # run_unit UNIT: becomes the daemon, in the unit's environment
    local line
    while read -r line; do
        export "${line?}"
    done < <(unit_values "$1" Environment)
    set -a
    while read -r line; do
        # shellcheck disable=SC1090  # what the unit names
        [[ ! -e $line ]] || source "$line"
    done < <(unit_values "$1" EnvironmentFile)
    while read -r line; do
        $line || exit
    done < <(unit_values "$1" ExecStartPre)
    # A script's background jobs ignore SIGINT; systemd's do not.
    # shellcheck disable=SC2046  # words
    exec env --default-signal=INT $(unit_values "$1" ExecStart)
}

start_unit() {
    prepare_unit "$1"
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
