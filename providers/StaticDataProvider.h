#pragma once

#include "providers/BaseDataProvider.h"

#include <string>

namespace TR {

/// The fixed description of the box's media abilities (TR-135 `Capabilities` and `Components`) and
/// the configuration parameters that live in files under /var/kelm. Measures nothing and keeps
/// nothing: every refresh writes the same subtree again; the files are read by the store and
/// written by D-Bus `set`.
class StaticDataProvider : public BaseDataProvider {
  public:
    using BaseDataProvider::BaseDataProvider;

    bool updateValues() override { return store(); }
    bool load() override { return true; }
    bool store() override;

  private:
    void setupFileParameter(const std::string& path, const std::string& file)
        KELM_REQUIRES(storage()->getStorageMutex());
};

}  // namespace TR
