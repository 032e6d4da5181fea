#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cwmp {

/// Every parameter and object, in the order of the tree: byte by byte, an object (whose name ends
/// with a point) before what is in it. The names are kept once, as they were listed; objects on the
/// way to a name are there also when the daemon does not list them. Constant after construction.
class NameTree {
  public:
    using Names = std::vector<std::string>;

    explicit NameTree(Names names);

    /// Of an object or a parameter; the empty name stands for what is above `Device.`.
    bool has(const std::string& name) const;
    bool hasParameter(const std::string& name) const;

    /// The parameter itself, or the parameters in the object.
    std::vector<const std::string*> parametersWithin(const std::string& name) const;
    /// The same with all objects, the object itself included.
    Names within(const std::string& name) const;
    /// What is in the object, but nothing that is in an object there.
    Names childrenOf(const std::string& object) const;

    static bool isObject(const std::string& name) { return name.empty() || name.back() == '.'; }

  private:
    using Place = Names::const_iterator;
    std::pair<Place, Place> listedWithin(const std::string& name) const;

    Names names_;
};

}  // namespace cwmp
