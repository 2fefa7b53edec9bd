#include "cars/car_listing.h"

#include "cars/fixed_point.h"

#include <charconv>

namespace torquil {

namespace {

std::string str(long long v) {
    return std::to_string(v);
}

// The box of every scalar field, by record name.
std::string boxText(const CarInfo& info, std::string_view field) {
    CarEntry entry;
    entry.info = info;
    return fieldText(entry, carFieldByName(field)->index);
}

} // namespace

std::vector<NamedValue> carRecordValues(const CarInfo& c) {
    std::vector<NamedValue> out;
    auto scalar = [&](std::string_view field) {
        out.push_back({std::string(field), boxText(c, field)});
    };
    for (std::string_view f : {"width", "height", "depth", "spr_num", "weight", "max_speed",
                               "min_speed", "acceleration", "braking", "grip", "handling"})
        scalar(f);
    static constexpr const char* kHls[] = {"H", "L", "S"};
    for (std::size_t i = 0; i < c.remap24.size(); ++i)
        for (std::size_t k = 0; k < 3; ++k)
            out.push_back({"remap24[" + str(static_cast<long long>(i)) + "]." + kHls[k],
                           str(c.remap24[i][k])});
    for (std::size_t i = 0; i < c.remap8.size(); ++i)
        out.push_back({"remap8[" + str(static_cast<long long>(i)) + "]", str(c.remap8[i])});
    for (std::string_view f : {"vtype", "model", "turning", "damagable"}) scalar(f);
    for (std::size_t i = 0; i < c.value.size(); ++i)
        out.push_back({"value[" + str(static_cast<long long>(i)) + "]", str(c.value[i])});
    for (std::string_view f : {"cx",
                               "cy",
                               "moment",
                               "rbp_mass",
                               "g1_thrust",
                               "tyre_adhesion_x",
                               "tyre_adhesion_y",
                               "handbrake_friction",
                               "footbrake_friction",
                               "front_brake_bias",
                               "turn_ratio",
                               "drive_wheel_offset",
                               "steering_wheel_offset",
                               "back_end_slide_value",
                               "handbrake_slide_value",
                               "convertible",
                               "engine",
                               "radio",
                               "horn",
                               "sound_function",
                               "fast_change_flag",
                               "doors"})
        scalar(f);
    return out;
}

std::vector<NamedValue> carDoorValues(const std::vector<DoorRec>& doors) {
    std::vector<NamedValue> out;
    for (std::size_t i = 0; i < doors.size(); ++i) {
        const std::string d = "door[" + str(static_cast<long long>(i)) + "].";
        out.push_back({d + "rpx", str(doors[i].rpx)});
        out.push_back({d + "rpy", str(doors[i].rpy)});
        out.push_back({d + "object", str(doors[i].object)});
        out.push_back({d + "delta", str(doors[i].delta)});
    }
    return out;
}

std::optional<FieldAddress> carFieldAddress(std::string_view name) {
    const std::size_t open = name.find('[');
    if (open == std::string_view::npos) {
        const CarField* f = carFieldByName(name);
        // Remap and door boxes need their index in brackets.
        if (!f || f->kind == FieldKind::Remap || f->kind == FieldKind::Door) return std::nullopt;
        return FieldAddress{f->index, {}};
    }
    const std::size_t close = name.find(']', open);
    if (close == std::string_view::npos || close == open + 1) return std::nullopt;
    int item = 0;
    const char* first = name.data() + open + 1;
    const char* last = name.data() + close;
    auto [end, ec] = std::from_chars(first, last, item);
    if (ec != std::errc{} || end != last || item < 0) return std::nullopt;

    const std::string_view base = name.substr(0, open);
    std::string_view part = name.substr(close + 1);
    std::string field(base);
    if (!part.empty()) {
        if (part.front() != '.') return std::nullopt;
        field += part; // "remap24" + ".H", "door" + ".rpx"
    }
    const CarField* f = carFieldByName(field);
    if (!f) return std::nullopt;
    if (f->kind == FieldKind::Remap) {
        if (item >= 12) return std::nullopt;
        return FieldAddress{f->index, {item, 0}};
    }
    if (f->kind == FieldKind::Door) return FieldAddress{f->index, {0, item}};
    return std::nullopt;
}

} // namespace torquil
