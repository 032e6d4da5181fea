#pragma once

#include <map>
#include <string>
#include <vector>

namespace cwmp {

/// Which parameters the ACS wants to hear of: 0 not, 1 with the next Inform (passive), 2 at once
/// (active). Entries are parameters, or objects (with their point) for all that is in them. An
/// exact entry wins, else that of the longest object. A plain value.
class Attributes {
  public:
    static constexpr int kOff = 0, kPassive = 1, kActive = 2;

    /// A name that is in several lists has the highest attribute.
    void add(const std::string& name, int notification);

    int of(const std::string& name) const;

    /// One step that makes the lists say what the ACS wants.
    struct Step {
        bool isAddition;
        int notification;  ///< the list
        std::string name;

        bool operator==(const Step& other) const {
            return isAddition == other.isAddition && notification == other.notification &&
                   name == other.name;
        }
    };

    /// Gives a parameter or an object the attribute and returns what changed. The entries below an
    /// object go. There is an entry only where the objects above do not say the same.
    std::vector<Step> set(const std::string& name, int notification);

  private:
    std::map<std::string, int> entries_;
};

}  // namespace cwmp
