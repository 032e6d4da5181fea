# bash completion for trctl: commands, options, and the running daemon's own parameters, one level at a time.

# What the daemon has beneath the object that the word names so far. Texts from the bus are quoted before they get into
# a command line; nothing of them is evaluated.
_trctl_paths() { # _trctl_paths WORD
    local object=${1%"${1##*.}"} bus=() level=() address quoted
    # The words themselves are split at colons and equal signs.
    [[ ! $COMP_LINE =~ --bus[=\ ]+([^\ ]+) ]] || bus=(--bus "${BASH_REMATCH[1]}")
    mapfile -t level < <("${COMP_WORDS[0]}" "${bus[@]}" --color never list --level ${object:+"$object"} 2>/dev/null)
    for address in "${level[@]}"; do
        [[ $address == "$1"* ]] || continue
        printf -v quoted %q "$address"
        COMPREPLY+=("$quoted")
    done
    # Behind an object the next level follows, not the next word.
    if ((${#COMPREPLY[@]} == 1)) && [[ ${COMPREPLY[0]} == *. ]]; then
        compopt -o nospace 2>/dev/null
    fi
}

_trctl_offer() { # _trctl_offer WORD CANDIDATE...
    local word=$1 candidate
    shift
    for candidate in "$@"; do
        [[ $candidate != "$word"* ]] || COMPREPLY+=("$candidate")
    done
}

_trctl_files() { # _trctl_files WORD
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
    compopt -o filenames 2>/dev/null || true
}

_trctl_options() { # _trctl_options COMMAND WORD
    local common=(--help --bus --color)
    case $1 in
        get | info) _trctl_offer "$2" "${common[@]}" --json ;;
        list) _trctl_offer "$2" "${common[@]}" --parameters --level --long ;;
        tree) _trctl_offer "$2" "${common[@]}" --ascii ;;
        watch) _trctl_offer "$2" "${common[@]}" --interval --except --no-clocks --rate --count --once \
            --json --plot --ascii ;;
        wait) _trctl_offer "$2" "${common[@]}" --timeout ;;
        report) _trctl_offer "$2" "${common[@]}" --seconds --snapshot ;;
        "") _trctl_offer "$2" "${common[@]}" --version ;;
        *) _trctl_offer "$2" "${common[@]}" ;;
    esac
}

_trctl() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} name='' index positionals=0
    local names=(get set list tree info watch wait diff changes report)
    COMPREPLY=()
    for ((index = 1; index < COMP_CWORD; ++index)); do
        if [[ ! $name && " ${names[*]} " == *" ${COMP_WORDS[index]} "* ]]; then
            name=${COMP_WORDS[index]}
        elif [[ $name && ${COMP_WORDS[index]} != -* ]]; then
            positionals=$((positionals + 1))
        fi
    done
    case $previous in
        --color) _trctl_offer "$word" auto always never && return ;;
        --bus | --interval | --timeout | --seconds) return ;;
        --snapshot) _trctl_files "$word" && return ;;
    esac
    if [[ $word == -* ]]; then
        _trctl_options "$name" "$word"
        return
    fi
    case $name in
        "") _trctl_offer "$word" "${names[@]}" ;;
        changes | wait) ;;
        set) ((positionals > 0)) || _trctl_paths "$word" ;;
        report)
            _trctl_files "$word"
            ((${#COMPREPLY[@]} > 0)) || _trctl_paths "$word"
            ;;
        diff)
            if ((positionals == 0)); then
                _trctl_files "$word"
            else
                _trctl_paths "$word"
            fi
            ;;
        *) _trctl_paths "$word" ;;
    esac
}

complete -F _trctl trctl scripts/trctl
