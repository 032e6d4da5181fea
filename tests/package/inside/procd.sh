# Sourced inside the root: so much of OpenWrt's rc.common and procd as an init script needs. Instances are started and
# signalled, not restarted; each call is noted down in /tmp/procd.
# shellcheck shell=sh disable=SC3043

note() { echo "$*" >>/tmp/procd; }

procd_open_instance() {
    instance=$1
    instance_env='' instance_pidfile=/tmp/unasked.pid
    note "instance $1"
}

procd_set_param() {
    local name="$1"
    shift
    note "$instance $name $*"
    case $name in
        command) instance_command=$* ;;
        env) instance_env=$* ;;
        pidfile) instance_pidfile=$1 ;;
    esac
}

# shellcheck disable=SC2086  # words
procd_close_instance() {
    (
        env --default-signal=INT $instance_env sh -c 'echo "$$" >"$0" && echo "$$" >"$1" && exec $2' \
            "$instance_pidfile" "/tmp/$instance.pid" "$instance_command" >"/tmp/$instance.log" 2>&1
        echo "$?" >"/tmp/$instance.status"
        rm -f "$instance_pidfile"
    ) &
}

procd_send_signal() {
    note "signal $*"
    kill -s "$3" "$(cat "/tmp/$2.pid")"
}

start() { start_service; }
# What is left when the script's own stop has returned gets SIGTERM.
# shellcheck disable=SC2046  # words
stop() {
    stop_service
    kill $(cat /tmp/*.pid 2>/dev/null) 2>/dev/null || true
}
