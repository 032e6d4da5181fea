#pragma once

#include "model/Storage.h"

namespace TR {

/// A branch of the tree and where its values come from. The worker thread makes, refreshes and
/// destroys every provider; no other thread uses one. The store is borrowed and outlives
/// the provider. Sources that fail show as empty texts or 0; nothing is logged.
class BaseDataProvider {
  public:
    explicit BaseDataProvider(Storage* storage) : storage_(storage) {}
    BaseDataProvider(const BaseDataProvider&) = delete;
    BaseDataProvider& operator=(const BaseDataProvider&) = delete;
    virtual ~BaseDataProvider() = default;

    /// One refresh: as a rule `load()` and, when that succeeded, `store()`.
    virtual bool updateValues() = 0;
    /// Gathers the data into the provider's members, without the store mutex.
    virtual bool load() = 0;
    /// Writes the members into the store, holding the store mutex throughout.
    virtual bool store() = 0;

  protected:
    Storage* storage() const { return storage_; }

  private:
    Storage* storage_;
};

}  // namespace TR
