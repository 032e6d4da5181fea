# From `ifconfig -a` of busybox to what `ip -o link show` and `ip -o -4 addr show` would print, as far as
# replay-network.awk looks, into the files `links` and `addresses`.

function finish() {
    if (name) print "1: " name ": <" flags "> mtu " mtu " link/ether " mac >links
    name = ""
}

/^[^ ]/ {
    finish()
    name = $1
    flags = mac = ""
    mtu = 1500
}

{
    for (i = 1; i <= NF; ++i) {
        if ($i == "HWaddr") mac = $(i + 1)
        if ($i == "UP") flags = flags ",UP"
        if ($i == "RUNNING") flags = flags ",LOWER_UP"
        if ($i ~ /^MTU:/) mtu = substr($i, 5)
        if ($i ~ /^Mask:/) print "1: " name " inet " substr($2, 6) "/" substr($i, 6) >addresses
    }
}

END { finish() }
