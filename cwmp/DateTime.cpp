#include "cwmp/DateTime.h"

#include "stb/src/common/Text.h"

#include <cstdint>
#include <ctime>

namespace cwmp {

namespace {

constexpr std::int64_t kDaySeconds = 86'400;
constexpr int kMonthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

/// A reader of fixed-width fields; a mismatch makes every later step fail.
class Fields {
  public:
    explicit Fields(const std::string& text) : text_(text) {}

    int number(std::size_t digits) {
        int value = 0;
        for (; digits > 0; --digits) {
            const char letter = peek();
            isGood_ = isGood_ && letter >= '0' && letter <= '9';
            if (!isGood_) return 0;
            value = value * 10 + (letter - '0');
            ++position_;
        }
        return value;
    }
    Fields& literal(const char* expected) {
        for (; *expected != '\0'; ++expected) isGood_ = accept(*expected) && isGood_;
        return *this;
    }
    bool accept(char letter) {
        const bool found = isGood_ && peek() == letter;
        if (found) ++position_;
        return found;
    }
    void skipFraction() {
        if (!accept('.')) return;
        number(1);
        while (peek() >= '0' && peek() <= '9') ++position_;
    }
    bool isAtEnd() const { return isGood_ && position_ == text_.size(); }

  private:
    char peek() const { return position_ < text_.size() ? text_[position_] : '\0'; }

    const std::string& text_;
    std::size_t position_ = 0;
    bool isGood_ = true;
};

struct Moment {
    int year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    int zoneMinutes = 0;
};

bool isLeap(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

bool isReal(const Moment& moment) {
    if (moment.year < 1 || moment.month < 1 || moment.month > 12 || moment.day < 1) return false;
    const int leap = moment.month == 2 && isLeap(moment.year) ? 1 : 0;
    return moment.day <= kMonthDays[moment.month - 1] + leap && moment.hour < 24 &&
           moment.minute < 60 && moment.second < 60;
}

int readZone(Fields& fields) {
    const int sign = fields.accept('+') ? 1 : fields.accept('-') ? -1 : 0;
    if (sign == 0) {
        fields.accept('Z');
        return 0;
    }
    const int hours = fields.number(2);
    return sign * (60 * hours + fields.literal(":").number(2));
}

std::optional<Moment> parse(const std::string& text, bool isXsd) {
    Fields fields(text);
    Moment moment;
    moment.year = fields.number(4);
    moment.month = fields.literal("-").number(2);
    moment.day = fields.literal("-").number(2);
    moment.hour = fields.literal(isXsd ? "T" : " ").number(2);
    moment.minute = fields.literal(":").number(2);
    moment.second = fields.literal(":").number(2);
    if (isXsd) {
        fields.skipFraction();
        moment.zoneMinutes = readZone(fields);
    } else {
        fields.literal(" UTC");
    }
    if (!fields.isAtEnd() || !isReal(moment)) return std::nullopt;
    return moment;
}

// Days since 1970 in the calendar that is in use today, also of times before it was.
std::int64_t daysOf(const Moment& moment) {
    const std::int64_t before = moment.year - 1;
    std::int64_t days = before * 365 + before / 4 - before / 100 + before / 400 - 719'162;
    for (int month = 1; month < moment.month; ++month) days += kMonthDays[month - 1];
    if (moment.month > 2 && isLeap(moment.year)) ++days;
    return days + moment.day - 1;
}

std::int64_t secondsOf(const Moment& moment) {
    const std::int64_t minutes =
        std::int64_t{60} * moment.hour + moment.minute - moment.zoneMinutes;
    return daysOf(moment) * kDaySeconds + 60 * minutes + moment.second;
}

std::optional<std::string> formatted(const std::optional<Moment>& moment, const char* separator,
                                     const char* zone) {
    if (!moment) return std::nullopt;
    const auto seconds = static_cast<std::time_t>(secondsOf(*moment));
    std::tm time{};
    if (gmtime_r(&seconds, &time) == nullptr) return std::nullopt;
    return TR::Utils::format("%04d-%02d-%02d%s%02d:%02d:%02d%s", time.tm_year + 1900,
                             time.tm_mon + 1, time.tm_mday, separator, time.tm_hour, time.tm_min,
                             time.tm_sec, zone);
}

}  // namespace

std::optional<std::string> dateTimeToAcs(const std::string& text) {
    const auto moment = parse(text, false);
    return formatted(moment ? moment : parse(text, true), "T", "Z");
}

std::optional<std::string> dateTimeFromAcs(const std::string& text) {
    return formatted(parse(text, true), " ", " UTC");
}

}  // namespace cwmp
