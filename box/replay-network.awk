# From `ip -o link show` and `ip -o -4 addr show` of a box to lines for `ip -batch`. The other end of each pair is
# what the interface's cable would be plugged into: down where there was no carrier. The other ends in a snapshot of a
# virtual box are left out. The texts are not trusted: anything but a valid name, number or address is skipped.

function is_name(text) { return text ~ /^[A-Za-z0-9_][A-Za-z0-9_.-]*$/ && length(text) < 16 && text !~ /^peer-/ }
function is_address(text) { return text ~ /^[0-9]+[.][0-9]+[.][0-9]+[.][0-9]+(\/[0-9.]+)?$/ }
function is_mac(text) { return length(text) == 17 && text ~ /^([0-9A-Fa-f][0-9A-Fa-f]:)+[0-9A-Fa-f][0-9A-Fa-f]$/ }

# The word behind another one.
function after(word, i) {
    for (i = 1; i < NF; ++i) if ($i == word) return $(i + 1)
    return ""
}

FILENAME == ARGV[1] {
    name = $2
    sub(/(@.*)?:$/, "", name)
    mac = after("link/ether")
    if (!is_name(name) || name in known || !is_mac(mac) || count == 64) next
    known[name] = ++count
    print "link add " name " address " mac " type veth peer name peer-" count
    mtu = after("mtu")
    if (mtu ~ /^[0-9]+$/ && mtu != 1500) print "link set dev " name " mtu " mtu
    if ($3 ~ /[<,]LOWER_UP[,>]/) print "link set dev peer-" count " up"
    if ($3 ~ /[<,]UP[,>]/) up[name] = 1
    next
}

$2 in known && is_address($4) {
    peer = after("peer")
    print "address add " $4 (is_address(peer) ? " peer " peer : " broadcast +") " dev " $2
}

END { for (name in up) print "link set dev " name " up" }
