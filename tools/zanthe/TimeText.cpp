#include "tools/zanthe/TimeText.h"

#include <charconv>
#include <iomanip>
#include <numeric>
#include <optional>
#include <sstream>
#include <stdexcept>

namespace Program {

namespace {

using Zanthe::MediaTime;

[[noreturn]] void RefuseForm(std::string_view text) {
    throw std::invalid_argument("'" + std::string(text) + "' is no time");
}

[[noreturn]] void RefuseSize(std::string_view text) {
    throw std::invalid_argument("'" + std::string(text) + "' cannot be counted");
}

// Sums and products in 64 bits that refuse to overflow.
class Exact {
public:
    explicit Exact(std::string_view text)
        : m_text(text) {}

    std::int64_t Sum(std::int64_t a, std::int64_t b) const {
        std::int64_t sum = 0;
        if (__builtin_add_overflow(a, b, &sum)) {
            RefuseSize(m_text);
        }
        return sum;
    }

    std::int64_t Product(std::int64_t a, std::int64_t b) const {
        std::int64_t product = 0;
        if (__builtin_mul_overflow(a, b, &product)) {
            RefuseSize(m_text);
        }
        return product;
    }

    // What stands in `digits`, which is not empty and digits alone.
    std::int64_t Number(std::string_view digits) const {
        std::int64_t number = 0;
        const char* end = digits.data() + digits.size();
        if (digits.empty() || digits.front() == '-') {
            RefuseForm(m_text);
        }
        const auto [stop, error] = std::from_chars(digits.data(), end, number);
        if (error == std::errc::result_out_of_range) {
            RefuseSize(m_text);
        }
        if (error != std::errc() || stop != end) {
            RefuseForm(m_text);
        }
        return number;
    }

private:
    std::string_view m_text; // what the user wrote, for messages
};

// Cuts `text` at the last `mark`: answers what stands behind it and leaves what stands before, or
// nothing and all of it where there is none.
std::optional<std::string_view> CutBehindLast(std::string_view& text, char mark) {
    const std::size_t place = text.rfind(mark);
    if (place == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view behind = text.substr(place + 1);
    text = text.substr(0, place);
    return behind;
}

MediaTime ParseFraction(std::string_view above, std::string_view below, const Exact& exact,
                        std::string_view text) {
    const std::int64_t denominator = exact.Number(below);
    if (denominator == 0) {
        RefuseForm(text);
    }
    return {exact.Number(above), denominator};
}

// The digits behind a decimal point as a fraction below one.
MediaTime ParseDecimals(std::string_view digits, const Exact& exact) {
    while (digits.size() > 1 && digits.back() == '0') {
        digits.remove_suffix(1);
    }
    std::int64_t scale = 1;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        scale = exact.Product(scale, 10);
    }
    return {exact.Number(digits), scale};
}

// Hours and minutes in front of `seconds`, in seconds.
std::int64_t ParseColons(std::string_view fields, std::int64_t seconds, const Exact& exact,
                         std::string_view text) {
    const auto minutes = CutBehindLast(fields, ':');
    const std::int64_t first = exact.Number(fields);
    if (seconds >= 60 || (minutes && exact.Number(*minutes) >= 60)) {
        RefuseForm(text);
    }
    const std::int64_t all =
        minutes ? exact.Sum(exact.Product(first, 60), exact.Number(*minutes)) : first;
    return exact.Sum(exact.Product(all, 60), seconds);
}

MediaTime ParseClock(std::string_view rest, const Exact& exact, std::string_view text) {
    MediaTime below(0);
    if (const auto decimals = CutBehindLast(rest, '.')) {
        below = ParseDecimals(*decimals, exact);
    }
    std::int64_t seconds = 0;
    if (const auto last = CutBehindLast(rest, ':')) {
        seconds = ParseColons(rest, exact.Number(*last), exact, text);
    } else {
        seconds = exact.Number(rest);
    }
    const std::int64_t whole = exact.Product(seconds, below.denominator());
    return {exact.Sum(whole, below.numerator()), below.denominator()};
}

// MediaTimeToReferenceTime must be exact for it.
void RequireCountable(const MediaTime& time, std::string_view text) {
    const std::int64_t common = std::gcd(time.denominator(), UnitsPerSecond);
    std::int64_t doubled = 0;
    std::int64_t sum = 0;
    if (__builtin_mul_overflow(time.numerator(), UnitsPerSecond / common, &doubled) ||
        __builtin_add_overflow(doubled, time.denominator() / common, &sum)) {
        RefuseSize(text);
    }
}

} // namespace

MediaTime ParseTime(std::string_view text) {
    const Exact exact(text);
    std::string_view rest = text;
    const auto below = CutBehindLast(rest, '/');
    const MediaTime time =
        below ? ParseFraction(rest, *below, exact, text) : ParseClock(rest, exact, text);
    RequireCountable(time, text);
    return time;
}

std::vector<MediaTime> ParseTimes(std::string_view text) {
    std::vector<MediaTime> times;
    for (const std::string& part : SplitAtCommas(text)) {
        times.push_back(ParseTime(part));
    }
    return times;
}

std::vector<std::string> SplitAtCommas(std::string_view text) {
    std::vector<std::string> parts;
    for (;;) {
        const std::size_t comma = text.find(',');
        parts.emplace_back(text.substr(0, comma));
        if (comma == std::string_view::npos) {
            return parts;
        }
        text.remove_prefix(comma + 1);
    }
}

std::string FractionText(const MediaTime& time) {
    std::string text = std::to_string(time.numerator());
    return time.denominator() == 1 ? text : text + '/' + std::to_string(time.denominator());
}

std::string ClockText(std::int64_t units) {
    constexpr std::int64_t unitsPerMillisecond = UnitsPerSecond / 1000;
    const std::int64_t milliseconds = (units + unitsPerMillisecond - 1) / unitsPerMillisecond;
    const std::int64_t seconds = milliseconds / 1000;
    std::ostringstream text;
    text << std::setfill('0') << seconds / 3600 << ':' << std::setw(2) << seconds / 60 % 60 << ':'
         << std::setw(2) << seconds % 60 << '.' << std::setw(3) << milliseconds % 1000;
    return text.str();
}

double SecondsOf(std::int64_t units) {
    return static_cast<double>(units) / static_cast<double>(UnitsPerSecond);
}

MediaTime TimeOfUnits(std::int64_t units) {
    return {units, UnitsPerSecond};
}

std::int64_t UnitsLookedFor(const MediaTime& time) {
    const std::int64_t seconds = time.numerator() / time.denominator();
    const std::int64_t rest = time.numerator() % time.denominator();
    std::int64_t scaled = 0;
    const std::int64_t units =
        __builtin_mul_overflow(rest, UnitsPerSecond, &scaled)
            ? static_cast<std::int64_t>(static_cast<double>(rest) /
                                        static_cast<double>(time.denominator()) * 1e7)
            : scaled / time.denominator();
    return seconds * UnitsPerSecond + units;
}

} // namespace Program
