# Sourced by the package's tests: one line per thing looked at, and how to end.
# shellcheck shell=sh disable=SC3043,SC2034,SC2086  # dash and bash know local; for others to use

[ "${1-}" != --help ] || exec sed -n '2,/^set/s/^# \{0,1\}//p' "$0"
failures=0

# check TEXT COMMAND...: what holds when the command succeeds.
check() {
    local text=$1
    shift
    if "$@"; then
        echo "ok: $text"
    else
        echo "FAILED: $text ($*)"
        failures=$((failures + 1))
    fi
}

refuses() { ! "$@"; }
prints() { # prints TEXT COMMAND...: the text is what the command prints
    local wanted=$1 got
    shift
    got=$("$@" 2>&1) || true
    [ "$got" = "$wanted" ] || { echo "got: $got" && return 1; }
}
mentions() { # mentions TEXT COMMAND...: the text is in what the command prints
    local wanted=$1 got
    shift
    got=$("$@" 2>&1) || true
    case $got in *"$wanted"*) ;; *) echo "got: $got" && return 1 ;; esac
}

# within SECONDS COMMAND...: tries until it succeeds or the time is up.
within() {
    local end
    end=$(($(date +%s) + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ "$(date +%s)" -lt "$end" ] || return 1
        sleep 0.1
    done
}

finish() {
    [ "$failures" -eq 0 ] || echo "$failures FAILED"
    exit "$((failures > 0))"
}

# call MEMBER ARGUMENT...: a method of the daemon.
call() {
    local member=$1 got
    shift
    got=$(dbus-send --bus="$DBUS_SESSION_BUS_ADDRESS" --print-reply=literal --reply-timeout=5000 \
        --dest=com.kelm.stb.TR /com/kelm/stb/TR "com.kelm.stb.TR.$member" "$@") || return
    [ -z "$got" ] || echo "$got" | sed "s/^ *//"
}
answers() { prints KELM call get_value string:Device.DeviceInfo.Manufacturer; }
readonly syslog_host=Device.Services.STBService.1.X_Kelm.Config.SyslogHost
counts_processes() { # more than the daemon, its shell and its ps
    local number
    number=$(call get_value string:Device.DeviceInfo.ProcessStatus.ProcessNumberOfEntries)
    [ "${number:-0}" -gt 5 ]
}
