# A stand-in of OpenWrt's file, as far as the recipe asks.
INCLUDE_DIR:=$(TOPDIR)/include
PKG_BUILD_DIR:=$(TOPDIR)/build
PKG_INSTALL_DIR:=$(TOPDIR)/installed
INSTALL_DIR:=install -d -m0755
INSTALL_BIN:=install -m0755
CP:=cp -fpR
