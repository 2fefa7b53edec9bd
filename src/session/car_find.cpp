#include "session/car_find.h"

#include "session/style_session.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <optional>

namespace torquil {

namespace {

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::optional<int> wholeNumber(const std::string& text) {
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [at, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || at != end || text.empty()) return std::nullopt;
    return value;
}

// "model 12", "model12", "m 12", "m12": the model number; nothing for other texts.
std::optional<int> modelQuery(const std::string& lowered) {
    for (const std::string prefix : {"model", "m"}) {
        if (lowered.rfind(prefix, 0) != 0) continue;
        if (auto n = wholeNumber(trimmed(lowered.substr(prefix.size())))) return n;
    }
    return std::nullopt;
}

} // namespace

std::vector<int> findCars(const StyleSession& session, const std::string& query) {
    const std::string text = trimmed(query);
    std::vector<int> found;
    if (text.empty()) return found;
    if (const std::optional<int> asn = wholeNumber(text)) return {*asn};

    const std::string wanted = lower(text);
    const std::optional<int> model = modelQuery(wanted);
    const CarTable& cars = session.cars;
    for (int asn = 1; asn <= cars.highest && asn < static_cast<int>(cars.slots.size()); ++asn) {
        const CarEntry& car = cars.slots[static_cast<std::size_t>(asn)];
        if (!car.inUse) continue;
        const std::string name = car.name.empty() ? session.names.nameOf(car.info.model) : car.name;
        const bool matches =
            model ? car.info.model == *model : lower(name).find(wanted) != std::string::npos;
        if (matches) found.push_back(asn);
    }
    return found;
}

int nextMatch(const std::vector<int>& matches, int current) {
    if (matches.empty()) return 0;
    const auto after = std::upper_bound(matches.begin(), matches.end(), current);
    return after != matches.end() ? *after : matches.front();
}

} // namespace torquil
