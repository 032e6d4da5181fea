#pragma once

#include "stb/src/common/NSTime.h"

#include <cstdint>
#include <deque>
#include <string>

namespace TR {

/// What service monitoring counts and keeps, apart from where it comes from and where it is shown.
/// The worker thread alone uses it; it takes no lock.
struct STBServiceMonitoringModel {
    /// The stream that plays on the main screen: its settings, the totals since their last reset
    /// and a run of samples of a fixed length. Of the figures only the transport-stream
    /// discontinuities have a source; the others stay 0.
    class MainStream {
      public:
        /// The figures of one sample interval.
        struct Sample {
            std::uint32_t sampleSeconds = 0;
            std::uint32_t packetDiscontinuityCounter = 0;
            std::uint32_t videoDecodedFrames = 0;
            std::uint32_t videoLostFrames = 0;
            std::uint32_t videoFrameRate = 0;
            std::uint32_t audioDecodedFrames = 0;
            std::uint32_t audioDecodingErrors = 0;
        };

        /// The figures since the last reset. They wrap at 32 bits.
        struct Total {
            std::uint32_t packetDiscontinuityCounter = 0;
            std::uint32_t audioDecodedFrames = 0;
            std::uint32_t audioDecodingErrors = 0;
            std::uint32_t videoFrameRate = 0;
            std::uint32_t videoDecodedFrames = 0;
            std::uint32_t videoLostFrames = 0;
        };

        static constexpr std::uint32_t kStatusDisabled = 0;
        static constexpr std::uint32_t kStatusEnabled = 1;
        static constexpr std::uint32_t kStatusError = 2;

        bool isEnabled() const { return enable_; }
        std::uint32_t status() const { return status_; }
        const std::string& serviceType() const { return serviceType_; }
        std::uint32_t gmin() const { return gmin_; }
        std::uint32_t severeLossMinDistance() const { return severeLossMinDistance_; }
        std::uint32_t severeLossMinLength() const { return severeLossMinLength_; }
        NSTime resetTime() const { return resetTime_; }
        const Total& total() const { return total_; }
        const std::deque<Sample>& samples() const { return samples_; }

        /// The status follows.
        void setEnable(bool enable);
        void setServiceType(const std::string& serviceType) { serviceType_ = serviceType; }
        void setGmin(std::uint32_t gmin) { gmin_ = gmin; }
        void setSevereLossMinDistance(std::uint32_t distance) { severeLossMinDistance_ = distance; }
        void setSevereLossMinLength(std::uint32_t length) { severeLossMinLength_ = length; }

        /// Zeroes the totals. The last reading stays, so that only later discontinuities count.
        void resetTotals();

        /// Adds what the driver's counter has grown by since the last reading. A smaller reading
        /// means that the counter began again, and adds nothing.
        void countDiscontinuities(int reading);

        /// Cuts or grows the samples at their end.
        void resizeSamples(std::uint32_t count) { samples_.resize(count); }
        /// Begins again with that many zero samples.
        void restartSamples(std::uint32_t count) { samples_ = std::deque<Sample>(count); }

      private:
        bool enable_ = false;
        std::uint32_t status_ = kStatusDisabled;
        std::string serviceType_;
        std::string unused_;
        std::uint32_t gmin_ = 0;
        std::uint32_t severeLossMinDistance_ = 0;
        std::uint32_t severeLossMinLength_ = 0;
        std::uint8_t flag_ = 0;  ///< cleared with the totals; nothing sets it
        NSTime resetTime_ = NSTime::nowRelative();
        Total total_;
        int lastDiscontinuityReading_ = 0;
        std::deque<Sample> samples_;
    };
};

}  // namespace TR
