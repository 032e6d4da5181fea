#pragma once

#include "providers/BaseDataProvider.h"
#include "stb/src/common/NSTime.h"

#include <cstdint>
#include <set>
#include <string>

namespace TR {

/// The IGMP client of the IP front end (TR-135 `Components.FrontEnd.1.IP.IGMP.`): its settings,
/// read once from the kernel, and the multicast groups that the box has joined, found every refresh
/// by the sockets bound to them. Commands run without the store mutex, which is held for the whole
/// of `store()` and for the writing half of `init()`. A command that fails leaves 0 and no groups.
class FrontEndDataProvider : public BaseDataProvider {
  public:
    struct FrontEnd {
        /// Members are spelled as they are published. Those that nothing changes are the client's
        /// fixed abilities.
        struct IGMP {
            /// A joined group; its address text is its identity and its order.
            struct ClientGroup {
                std::string groupAddress;
                NSTime firstSeen;  ///< monotonic

                bool operator<(const ClientGroup& other) const {
                    return groupAddress < other.groupAddress;
                }
            };

            bool Enable = true;
            std::string Status = "Enabled";
            std::uint32_t MaximumNumberOfConcurrentGroups = 0;
            std::uint32_t MaximumNumberOfTrackedGroups = 0;
            bool LoggingEnable = false;
            std::uint32_t DSCPMark = 0;
            std::int32_t VLANIDMark = -1;
            std::int32_t EthernetPriorityMark = -1;
            std::uint32_t clientVersion = 0;
            std::uint32_t ClientGroupNumberOfEntries = 0;
            std::uint32_t ClientGroupStatsNumberOfEntries = 0;
            std::set<ClientGroup> clientGroups;

            /// Makes these the joined groups. One that was joined before keeps its time, a new one
            /// begins \p now.
            void setJoinedGroups(const std::set<std::string>& addresses, const NSTime& now);
        };

        IGMP igmp;
    };

    using BaseDataProvider::BaseDataProvider;

    /// Reads the kernel's settings and creates what is read once; called once, before the first
    /// refresh. Without a store nothing is written.
    void init();

    bool updateValues() override { return load() && store(); }
    bool load() override;
    /// Publishes the groups; false without a store.
    bool store() override;

  private:
    void removePublishedGroups() KELM_REQUIRES(storage()->getStorageMutex());
    void publishGroups() KELM_REQUIRES(storage()->getStorageMutex());

    FrontEnd frontEnd_;
};

}  // namespace TR
