# Sourced by the scripts of this folder: goes to the repository's root.
# shellcheck shell=bash
script=$(realpath "$0")
cd "${script%/*}/.." || exit

# The comment at the head of the script, without its marks.
usage() { sed -n '2,/^set/{/^set/d;s/^# \{0,1\}//;p}' "$script"; }

wrong_call() {
    usage >&2
    exit 2
}

# What the script does, for people: standard output is for results.
say() { echo "${script##*/}: $*" >&2; }

case ${1-} in
    --help | -h) usage && exit 0 ;;
esac
