# A stand-in of OpenWrt's file, of which the recipe asks nothing.
