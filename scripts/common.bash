# Sourced by bash scripts: goes to the repository's root and serves --help. What stands between their first line and
# "set" is their help.
# shellcheck shell=bash
script=$(realpath "$0")
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit

usage() { sed -n '2,/^set/s/^# \{0,1\}//p' "$script"; }

wrong_call() {
    usage >&2
    exit 2
}

# What the script does, for people: standard output is for results.
say() { echo "${script##*/}: $*" >&2; }

give_up() {
    say "$*"
    exit 1
}

build_release() { # build_release TARGET...
    say "building"
    cmake --preset release >/dev/null
    cmake --build --preset release --target "$@" >&2
}

# Leaves a folder for the script's own files in `scratch`, until its end.
make_scratch() {
    scratch=$(mktemp -d)
    trap 'rm -rf "$scratch"' EXIT
}

case ${1-} in
    --help | -h) usage && exit 0 ;;
esac
