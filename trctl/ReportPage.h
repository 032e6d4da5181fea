#pragma once

#include "client/Json.h"

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace trctl {

/// What a report is made of, and the page that holds it. Pure: no bus, no file, no clock.

/// The values without secrets. The text of a parameter whose name ends in Passphrase or Password is
/// replaced by a mask, also where another value holds it. A secret of less than four characters is
/// masked in its own parameter only.
client::Values withoutSecrets(client::Values values);

/// The values that changed while they were watched. Keeps a point per change, not per round.
class Series {
  public:
    using Points = std::vector<std::pair<std::int64_t, std::string>>;  ///< milliseconds, value

    /// One round of reading; the times grow.
    void add(std::int64_t milliseconds, const client::Values& round);
    /// By address; each has at least two points.
    std::map<std::string, Points> changed() const;

  private:
    struct Track {
        Points points;
        std::string latest;  // whole; a point's text is shortened
    };
    std::map<std::string, Track> tracks_;
};

struct Report {
    std::string program;  ///< name and version
    std::string made;     ///< UTC
    std::string source;   ///< where the values are from, one sentence
    int seconds = 0;      ///< how long they were watched
    client::Values values;
    std::map<std::string, Series::Points> series;
};

/// The data as JSON that may stand in a script element: nothing in it ends the element.
std::string reportJson(const Report& report);

/// The whole page. \p nonce allows the page's own script and style, and must be fresh and random.
std::string reportPage(const Report& report, const std::string& nonce);

}  // namespace trctl
