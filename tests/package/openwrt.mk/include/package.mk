# A stand-in of OpenWrt's file, as far as the recipe asks: BuildPackage prints the fields and runs the steps.
define BuildPackage
$(eval $(call Package/$(1)))
all::
	echo "$(1) $(PKG_VERSION) $(DEPENDS)"
	$(call Build/Prepare)
	$(call Package/$(1)/install,$(TOPDIR)/$(1))
$(foreach script,postinst prerm,$(file >$(TOPDIR)/$(1).$(script),$(Package/$(1)/$(script))))
endef
