#include "TR_adaptor.h"

#include <dbus-c++/dbus.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

/// The daemon's interface with constant answers: what the binding itself costs.
class Service : public com::kelm::stb::TR_adaptor,
                public DBus::IntrospectableAdaptor,
                public DBus::ObjectAdaptor {
  public:
    Service(DBus::Connection& connection, std::vector<std::string> names)
        : DBus::ObjectAdaptor(connection, "/com/kelm/stb/TR"), names_(std::move(names)) {}

    void set(const std::string&, const std::string&) override {}
    std::string get_value(const std::string&) override { return "KELM"; }
    std::string getWritable(const std::string&) override { return "0"; }
    std::string getForcedInform(const std::string&) override { return "0"; }
    std::vector<std::string> listAddresses() override { return names_; }
    std::vector<std::string> listParametersOnly() override { return names_; }
    void updateNotifTable() override {}
    std::string checkValueChange() override { return {}; }

  private:
    std::vector<std::string> names_;
};

std::vector<std::string> linesOf(const char* path) {
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

}  // namespace

// trd-reference-dbuscxx BUS_NAME FILE_WITH_THE_NAMES_TO_LIST
int main(int argc, char** argv) {
    if (argc != 3) return 2;
    DBus::BusDispatcher dispatcher;
    DBus::default_dispatcher = &dispatcher;
    DBus::Connection connection = DBus::Connection::SessionBus();
    const Service service(connection, linesOf(argv[2]));
    connection.request_name(argv[1]);
    dispatcher.enter();
}
