#pragma once

#include "cwmp/Attributes.h"
#include "cwmp/DataModel.h"
#include "cwmp/Faults.h"
#include "cwmp/NotificationFile.h"
#include "cwmp/Snapshot.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace cwmp {

/// What the ACS watches: its attributes in uci, and the file of the values that it knows. A change
/// is what differs between that file and the box, so it does not matter who noticed it, or whether
/// client or daemon ran at the time. Operations throw as those of DataModel do; then the file is as
/// it was. Borrows both.
class Watch {
  public:
    Watch(DataModel& model, NotificationFile& file) : model_(model), file_(file) {}

    Attributes attributes();
    /// Stores attributes that were checked. False when uci has failed; then nothing has changed.
    bool setAttributes(const std::vector<std::pair<std::string, int>>& wanted);

    /// Gives the file a row for each watched parameter. What it holds already stays, so a change
    /// that has not been reported is still one.
    void update();
    /// Hands the changes to \p report and makes the file say that the ACS knows them: written
    /// before they are reported, and in its place when they have been.
    void check(const std::function<void(const Rows&)>& report);
    /// The changes, with nothing written.
    Rows look();
    /// The ACS has set these values itself.
    void acknowledge(const std::vector<std::pair<std::string, std::string>>& values);

  private:
    DataModel::Parameters watched(const Attributes& attributes);
    Rows rowsOf(const DataModel::Parameters& parameters, const Attributes& attributes,
                const std::string& earlier);
    void write(const std::string& text, const std::string& old);
    bool carryOut(const std::vector<Attributes::Step>& steps);

    DataModel& model_;
    NotificationFile& file_;
};

}  // namespace cwmp
