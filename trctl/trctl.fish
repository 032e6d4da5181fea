# fish completion for trctl, which prints the candidates itself; status 1 asks for names of files. fish quotes them.
function __trctl_candidates
    set -l words (commandline -opc)
    $words[1] complete (commandline -cp | string join ' ') 2>/dev/null
    if test $status -eq 1
        __fish_complete_path (commandline -ct)
    end
end

complete -c trctl -f -a '(__trctl_candidates)'
