# Sourced by the scripts that unpack or install packages of Debian 12 outside this system. They come from the main
# archive that this machine's own apt uses, with its address, keyring and options.
# shellcheck shell=bash

readonly debian_release=bookworm

# Leaves its address in `archive`; fails without one. What apt would fetch is listed for both styles of sources, also
# before the first update.
find_archive() {
    archive=$(apt-get update --print-uris |
        sed -nE "s#^'(.*)/dists/$debian_release/main/binary-[^/]+/Packages.*#\1#p" | sort -u | head -n 1)
    if [[ ! $archive ]]; then
        echo "apt has no source with the main component of Debian $debian_release" >&2
        return 1
    fi
}

# The keyrings that the sources of this archive name; where none is named, apt's own are taken.
find_keyrings() {
    local places file list='' parts=''
    eval "$(apt-config shell list Dir::Etc::sourcelist/f parts Dir::Etc::sourceparts/d)"
    mapfile -t places < <(grep -lsF -- "$archive" "$list" "$parts"*.list "$parts"*.sources)
    keyrings=()
    ((${#places[@]} > 0)) || return 0
    while read -r file; do
        keyrings+=("--keyring=$file")
    done < <(sed -nE 's/^[^#]*signed-by *[:=] *(\/[^] ]+).*/\1/Ip' "${places[@]}" | sort -u)
}

# apt's options for how to fetch and as which user; not its folders and architectures.
apt_options() {
    apt-config dump Acquire
    apt-config dump APT::Sandbox
}

# debian_tar OPTION...: an archive of a root folder, made by mmdebstrap as the options say, on standard output.
debian_tar() {
    local options archive keyrings status=0
    find_archive || return
    find_keyrings
    options=$(mktemp)
    apt_options >"$options"
    mmdebstrap --quiet --format=tar --aptopt="$options" "${keyrings[@]}" "$@" \
        "$debian_release" - "deb $archive $debian_release main" || status=$?
    rm -f "$options"
    return "$status"
}
