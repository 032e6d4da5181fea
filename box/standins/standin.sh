# shellcheck shell=dash disable=SC3060  # busybox replaces in strings
# What all stand-ins share; each begins with
#
#     . /usr/kelm-box/standin.sh
#
# It logs the call, then fails as /run/kelm-box/fault/COMMAND asks. A call is one line and one write, so lines of
# calls at the same time never mix (echo of busybox writes once). Nothing here starts a process unless a fault is set:
# the daemon's own cost is measured beside it.

name=${0##*/}
newline='
'

# Behaves as the fault's words `kind` and `number` ask.
fail() { # fail ARGUMENT...
    case $kind in
        exit) exit "${number:-1}" ;;
        silent) exit 0 ;;
        garbage)
            printf '\377\376\001\000\303(\200kB\r\n\000=\355\240\200: 239.\300\200\n'
            printf '\033[31m\a%%s%%n\t"\\\365\277\n\342\202\000\177'
            exit 0
            ;;
        flood) yes "$name goes on and on and on" | head -c 10485760 && exit 0 ;;
        line) head -c 10485760 /dev/zero | tr '\000' x && exit 0 ;;
        # Answered as usual by an inner call without the fault, which is not logged.
        noeol)
            answer=$(KELM_STANDIN_INNER=1 "$0" "$@") && status=0 || status=$?
            printf '%s' "$answer"
            exit "$status"
            ;;
        slow) sleep "${number:-1}" ;;
        hang) exec sleep 1000000 ;;
        # The pipe ends but the command does not, for a while.
        closeearly)
            exec >&-
            sleep "${number:-2}"
            exit 0
            ;;
        # The command ends but the pipe does not, for a while.
        background) sleep "${number:-5}" & ;;
        *) echo "$name: no such fault: $kind" >&2 && exit 99 ;;
    esac
}

# What the command printed in the box that the snapshot is of. A call that was not made there has no
# answer, but for uci and ubus, whose own stand-ins take what the daemon or its client sets.
replay() {
    local answer line
    for answer in "/run/kelm-box/replay/$name"/*; do
        line=
        [ ! -e "$answer/call" ] || read -r line <"$answer/call"
        if [ "$line" = "$name${1+ $*}" ]; then
            cat "$answer/output"
            cat "$answer/errors" >&2
            read -r line <"$answer/status"
            exit "$line"
        fi
    done
    [ "$name" != uci ] && [ "$name" != ubus ] || return 0
    echo "$name: the snapshot does not have the answer to this call" >&2
    exit 1
}

if [ -z "${KELM_STANDIN_INNER-}" ]; then
    line="$name${1+ $*}"
    echo "${line//$newline/\\n}" >>"/run/kelm-box/log/$name"
    if [ -e "/run/kelm-box/fault/$name" ]; then
        read -r kind number <"/run/kelm-box/fault/$name" || true
        [ ! "$kind" ] || fail "$@"
    fi
fi

[ ! -d /run/kelm-box/replay ] || replay "$@"
