# bash completion for trctl, which prints the candidates itself; status 1 asks for names of files. Candidates may come from
# the bus: each is quoted before it gets into a command line, and none is evaluated.
_trctl() { # _trctl PROGRAM WORD PREVIOUS, WORD without the quote ahead and behind the last colon or equal sign
    local line=${COMP_LINE:0:COMP_POINT} ahead printed candidate
    COMPREPLY=()
    printed=$("$1" complete "$line" 2>/dev/null)
    if (($? == 1)); then
        mapfile -t COMPREPLY < <(compgen -f -- "$2")
        ((${#COMPREPLY[@]} == 0)) || compopt -o filenames 2>/dev/null
    fi
    [[ $printed ]] && ((${#COMPREPLY[@]} == 0)) || return 0
    # What bash keeps of the word.
    ahead=${line##*[[:space:]]}
    ahead=${ahead%"$2"}
    while IFS= read -r candidate; do
        if [[ ${COMP_WORDS[COMP_CWORD]} != [\"\']* ]]; then
            printf -v candidate %q "${candidate#"${ahead//[\"\']/}"}"
        elif [[ $candidate == *[\"\'\\\$\`!]* ]]; then
            continue
        fi
        COMPREPLY+=("$candidate")
    done <<<"$printed"
    [[ ${#COMPREPLY[@]} != 1 || ${COMPREPLY[0]} != *[.=] ]] || compopt -o nospace 2>/dev/null || true
}

complete -F _trctl trctl scripts/trctl
