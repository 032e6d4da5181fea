# Sourced by the scripts that make a root folder of packages of Debian 12. They come from the main archive that this
# machine's own apt uses, with its address, keyring and options.
# shellcheck shell=bash

readonly debian_release=bookworm

# debian_tar OPTION...: an archive of a root folder, made by mmdebstrap as the options say, on standard output.
debian_tar() {
    local archive keyrings
    # shellcheck disable=SC2016  # apt's own variable
    archive=$(apt-get indextargets --no-release-info --format '$(SITE)' 'Identifier: Packages' \
        "Release: $debian_release" 'Component: main' | head -n 1)
    [[ $archive ]] || give_up "apt has no source with the main component of Debian $debian_release"
    # The keyrings that the sources of this archive name; where none is named, apt's own are taken.
    mapfile -t keyrings < <(grep -lsF -- "$archive" /etc/apt/sources.list{,.d/*} |
        xargs -r sed -nE 's/^[^#]*signed-by *[:=] *(\/[^] ]+).*/--keyring=\1/Ip' | sort -u)
    # How to fetch and as which user; not apt's folders and architectures.
    { apt-config dump Acquire && apt-config dump APT::Sandbox; } >build/apt-options
    mmdebstrap --quiet --format=tar --aptopt=build/apt-options "${keyrings[@]}" "$@" \
        "$debian_release" - "deb $archive $debian_release main"
}

# make_once RESULT SOURCES: has the function `make` make the file or folder RESULT, unless it is there already, made
# from the same.
make_once() {
    if [[ -e $1 && -e $1.made-from && $(<"$1.made-from") == "$2" ]]; then
        say "$1 is there already"
        return
    fi
    say "unpacking $2 of Debian $debian_release"
    mkdir -p build
    rm -rf "$1" "$1.new" "$1.made-from"
    make "$1.new"
    mv "$1.new" "$1"
    echo "$2" >"$1.made-from"
    say "$1 is made, $(du -sh "$1" | cut -f1)"
}
