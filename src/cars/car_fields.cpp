#include "cars/car_fields.h"

#include "cars/fixed_point.h"

#include <cctype>
#include <limits>
#include <type_traits>
#include <variant>

namespace torquil {

namespace {

constexpr std::int64_t kBig = 32000;
constexpr FieldKind I = FieldKind::Integer, F = FieldKind::Fixed;

constexpr std::array<CarField, kCarFieldCount> kFields{{
    {0, "width", "Width", "Collision Checking X", 0, 255, I, true},
    {1, "height", "Height", "Collision Checking Y", 0, 255, I, true},
    {2, "depth", "Depth", "Collision Checking Z", 0, 255, I, true},
    {3, "spr_num", "Sprite Number", "", 0, kBig, I, true},
    {4, "weight", "Weight", "Weight Descriptor", -kBig, kBig, I, true},
    {5, "max_speed", "Max Speed", "", -kBig, kBig, I, true},
    {6, "min_speed", "Min Speed", "Reverse Speed", -kBig, kBig, I, true},
    {7, "acceleration", "Acceleration", "", -kBig, kBig, I, true},
    {8, "braking", "Braking", "", -kBig, kBig, I, true},
    {9, "grip", "Grip", "", -kBig, kBig, I, true},
    {10, "handling", "Handling", "", -kBig, kBig, I, true},
    {11, "vtype", "Vehicle Type", "4=standard car", 0, 255, I, true},
    {12, "model", "Model", "Sub-Type of Vehicle Type", 0, 255, I, true},
    {13, "turning", "Turning", "", 0, 255, I, true},
    {14, "damagable", "Damagable", "How easily car can sustain damage", 0, 255, I, true},
    {15, "cx", "CG_X", "Pixel coords of the center of mass X", -255, 255, I, true},
    {16, "cy", "CG_Y", "Pixel coords of the center of mass Y", -255, 255, I, true},
    {17, "moment", "Moment", "Moment of inertia", -2000000000, 2000000000, FieldKind::Raw, true},
    {18, "rbp_mass", "Mass", "Total Mass (don't set too low)", -kBig, kBig, F, true},
    {19, "g1_thrust", "Thrust", "1st gear thrust", -kBig, kBig, F, true},
    {20, "tyre_adhesion_x", "Tyre Adhesion_X", "", -kBig, kBig, F, true},
    {21, "tyre_adhesion_y", "Tyre Adhesion_Y", "", -kBig, kBig, F, true},
    {22, "handbrake_friction", "Handbrake Friction", "", -kBig, kBig, F, true},
    {23, "footbrake_friction", "Footbrake Friction", "", -kBig, kBig, F, true},
    {24, "front_brake_bias", "Frontbrake Bias", "", -kBig, kBig, F, true},
    {25, "turn_ratio", "Turn Ratio", "", -kBig, kBig, I, true},
    {26, "drive_wheel_offset", "Drive Wheel Offset", "", -kBig, kBig, I, true},
    {27, "steering_wheel_offset", "Steeringwheel offset", "", -kBig, kBig, I, true},
    {28, "back_end_slide_value", "Back End Slide", "", -kBig, kBig, F, true},
    {29, "handbrake_slide_value", "Handbrake Slide", "", -kBig, kBig, F, true},
    {30, "convertible", "Convertible Flag", "1 if convertible", 0, 255, I, true},
    {31, "engine", "Engine Sound", "", 0, 255, I, true},
    {32, "radio", "Radio Sound", "Radio listening type", 0, 255, I, true},
    {33, "horn", "Horn Sound", "", 0, 255, I, true},
    {34, "sound_function", "Sound Function", "", 0, 255, I, true},
    {35, "fast_change_flag", "Fast Change Flag", "", 0, 255, I, true},
    {36, "doors", "Doors", "Number of opening doors", 0, kBig, I, true},
    {37, "value", "Value", "X $1000 (Value at all 4 cranes assumed equal)", 0, kBig, I, true},
    {38, "remap24.H", "Hue", "", 0, 0, FieldKind::Remap, false},
    {39, "remap24.L", "Lightness", "", 0, 0, FieldKind::Remap, false},
    {40, "remap24.S", "Saturation", "", 0, 0, FieldKind::Remap, false},
    {41, "remap8", "Palette Index", "", 0, 255, FieldKind::Remap, true},
    {42, "name", "Model Name", "", 0, 0, FieldKind::Name, false},
    {43, "door.rpx", "RPX:", "", -255, 255, FieldKind::Door, true},
    {44, "door.rpy", "RPY:", "", -255, 255, FieldKind::Door, true},
    {45, "door.object", "Object:", "", 0, 255, FieldKind::Door, true},
    {46, "door.delta", "Delta:", "", 0, 255, FieldKind::Door, true},
}};

// The record member behind each of the boxes 0..36 (box 37, the values, is handled apart).
using Member = std::variant<std::int16_t CarInfo::*, std::uint8_t CarInfo::*,
                            std::int8_t CarInfo::*, std::int32_t CarInfo::*>;
const std::array<Member, 37> kMembers{&CarInfo::width,
                                      &CarInfo::height,
                                      &CarInfo::depth,
                                      &CarInfo::spr_num,
                                      &CarInfo::weight,
                                      &CarInfo::max_speed,
                                      &CarInfo::min_speed,
                                      &CarInfo::acceleration,
                                      &CarInfo::braking,
                                      &CarInfo::grip,
                                      &CarInfo::handling,
                                      &CarInfo::vtype,
                                      &CarInfo::model,
                                      &CarInfo::turning,
                                      &CarInfo::damagable,
                                      &CarInfo::cx,
                                      &CarInfo::cy,
                                      &CarInfo::moment,
                                      &CarInfo::rbp_mass,
                                      &CarInfo::g1_thrust,
                                      &CarInfo::tyre_adhesion_x,
                                      &CarInfo::tyre_adhesion_y,
                                      &CarInfo::handbrake_friction,
                                      &CarInfo::footbrake_friction,
                                      &CarInfo::front_brake_bias,
                                      &CarInfo::turn_ratio,
                                      &CarInfo::drive_wheel_offset,
                                      &CarInfo::steering_wheel_offset,
                                      &CarInfo::back_end_slide_value,
                                      &CarInfo::handbrake_slide_value,
                                      &CarInfo::convertible,
                                      &CarInfo::engine,
                                      &CarInfo::radio,
                                      &CarInfo::horn,
                                      &CarInfo::sound_function,
                                      &CarInfo::fast_change_flag,
                                      &CarInfo::doors};

template <class T> bool fits(std::int64_t v) {
    return v >= std::numeric_limits<T>::min() && v <= std::numeric_limits<T>::max();
}

template <class T> FieldStore storeWhole(T& target, std::int64_t v) {
    if (!fits<T>(v)) return FieldStore::DoesNotFit;
    target = static_cast<T>(v);
    return FieldStore::Stored;
}

std::int64_t memberValue(const CarInfo& info, int index) {
    return std::visit([&](auto member) { return static_cast<std::int64_t>(info.*member); },
                      kMembers[static_cast<std::size_t>(index)]);
}

FieldStore storeMember(CarInfo& info, int index, std::int64_t v) {
    return std::visit([&](auto member) { return storeWhole(info.*member, v); },
                      kMembers[static_cast<std::size_t>(index)]);
}

DoorRec* doorAt(CarEntry& entry, int door) {
    if (door < 0 || door >= static_cast<int>(entry.doorList.size())) return nullptr;
    return &entry.doorList[static_cast<std::size_t>(door)];
}

std::int16_t DoorRec::*doorMember(int index) {
    switch (index) {
    case 43:
        return &DoorRec::rpx;
    case 44:
        return &DoorRec::rpy;
    case 45:
        return &DoorRec::object;
    default:
        return &DoorRec::delta;
    }
}

bool remapInRange(int remap) {
    return remap >= 0 && remap < 12;
}

// What the record field behind a box holds: its smallest and largest value, its bytes and sign.
struct FieldRange {
    std::int64_t low, high;
    int bytes;
    bool isSigned;
};
template <class T> FieldRange rangeOf() {
    return {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(),
            static_cast<int>(sizeof(T)), std::numeric_limits<T>::is_signed};
}
FieldRange fieldRange(const CarField& f) {
    switch (f.kind) {
    case FieldKind::Integer:
        if (f.index == kValueBox) return rangeOf<std::int16_t>();
        return std::visit(
            [](auto member) { return rangeOf<std::remove_cvref_t<decltype(CarInfo{}.*member)>>(); },
            kMembers[static_cast<std::size_t>(f.index)]);
    case FieldKind::Raw:
    case FieldKind::Fixed:
        return rangeOf<std::int32_t>();
    case FieldKind::Remap:
        return f.index == 41 ? rangeOf<std::uint8_t>() : rangeOf<std::int16_t>();
    case FieldKind::Door:
    case FieldKind::Name:
        break;
    }
    return rangeOf<std::int16_t>();
}

} // namespace

const std::array<CarField, kCarFieldCount>& carFields() {
    return kFields;
}

const CarField* carField(int index) {
    if (index < 0 || index >= kCarFieldCount) return nullptr;
    return &kFields[static_cast<std::size_t>(index)];
}

const CarField* carFieldByName(std::string_view name) {
    auto same = [](std::string_view a, std::string_view b) {
        if (a.size() != b.size()) return false;
        for (std::size_t i = 0; i < a.size(); ++i)
            if (std::tolower(static_cast<unsigned char>(a[i])) !=
                std::tolower(static_cast<unsigned char>(b[i])))
                return false;
        return true;
    };
    for (const CarField& f : kFields)
        if (same(f.field, name)) return &f;
    return nullptr;
}

std::string fieldText(const CarEntry& entry, int index, const FieldCursor& at) {
    const CarField* f = carField(index);
    if (!f) return {};
    const CarInfo& info = entry.info;
    switch (f->kind) {
    case FieldKind::Integer:
        if (index == kValueBox) return std::to_string(info.value[0]);
        return std::to_string(memberValue(info, index));
    case FieldKind::Raw:
        return std::to_string(info.moment);
    case FieldKind::Fixed:
        return float32in(static_cast<std::int32_t>(memberValue(info, index)));
    case FieldKind::Remap:
        if (!remapInRange(at.remap)) return {};
        if (index == 41) return std::to_string(info.remap8[static_cast<std::size_t>(at.remap)]);
        return std::to_string(
            info.remap24[static_cast<std::size_t>(at.remap)][static_cast<std::size_t>(index - 38)]);
    case FieldKind::Name:
        return entry.name;
    case FieldKind::Door: {
        const DoorRec* door = doorAt(const_cast<CarEntry&>(entry), at.door);
        return door ? std::to_string(door->*doorMember(index)) : std::string{};
    }
    }
    return {};
}

FieldCheck clampFieldText(int index, const std::string& text) {
    FieldCheck check{text, {}, false, false};
    const CarField* f = carField(index);
    if (!f || f->kind == FieldKind::Name) return check;
    const std::optional<double> value = parseNumber(text);
    if (!value) return check; // "-", "." and "-." stay so that the user can go on typing
    check.isNumber = true;
    if (!f->limited) return check;
    const std::int64_t whole = wholeNumber(*value);
    if (whole < f->low) {
        check.text = std::to_string(f->low);
        check.report = "txtbox valve set to L val";
        check.clamped = true;
    } else if (whole > f->high) {
        check.text = std::to_string(f->high);
        check.report = "txtbox valve set to H val";
        check.clamped = true;
    }
    return check;
}

std::string doesNotFitReason(int index, const std::string& text) {
    const CarField* f = carField(index);
    const std::optional<double> value = parseNumber(text);
    if (!f || f->kind == FieldKind::Name || !value) return {};
    const FieldRange range = fieldRange(*f);
    // A 16.16 field holds the value times 65536.
    const std::int64_t whole =
        f->kind == FieldKind::Fixed ? wholeNumber(*value * 65536.0) : wholeNumber(*value);
    if (whole >= range.low && whole <= range.high) return {};
    const std::string limits = std::to_string(range.low) + " to " + std::to_string(range.high);
    const std::string name(f->field);
    if (range.bytes != 1)
        return "the record keeps " + name + " in " + std::to_string(range.bytes) + " bytes (" +
               limits + ")";
    // One byte: what the game would find there if the number were cut to its low 8 bits.
    const auto byte = static_cast<std::uint8_t>(static_cast<std::uint64_t>(whole) & 0xFF);
    const long long read = range.isSigned ? static_cast<std::int8_t>(byte) : byte;
    return "the game reads " + name + " as one " + (range.isSigned ? "signed" : "unsigned") +
           " byte (" + limits + "): " + std::to_string(whole) + " would be read as " +
           std::to_string(read);
}

std::string textOnLeave(const std::string& text) {
    return text.find_first_not_of(" \t") == std::string::npos ? std::string("0") : text;
}

FieldStore setFieldText(CarEntry& entry, int index, const std::string& text,
                        const FieldCursor& at) {
    const CarField* f = carField(index);
    if (!f) return FieldStore::NoSuchField;
    if (f->kind == FieldKind::Name) {
        entry.name = text;
        return FieldStore::Stored;
    }
    const std::optional<double> value = parseNumber(text);
    if (!value) return FieldStore::NotANumber;
    const std::int64_t whole = wholeNumber(*value);
    CarInfo& info = entry.info;

    switch (f->kind) {
    case FieldKind::Integer:
        if (index == kValueBox) {
            if (!fits<std::int16_t>(whole)) return FieldStore::DoesNotFit;
            info.value.fill(static_cast<std::int16_t>(whole)); // one box for all four cranes
            return FieldStore::Stored;
        }
        return storeMember(info, index, whole);
    case FieldKind::Raw:
        return storeWhole(info.moment, whole);
    case FieldKind::Fixed: {
        if (!fits<std::int32_t>(wholeNumber(*value * 65536.0))) return FieldStore::DoesNotFit;
        return storeMember(info, index, float32out(text));
    }
    case FieldKind::Remap: {
        if (!remapInRange(at.remap)) return FieldStore::NoSuchField;
        const auto r = static_cast<std::size_t>(at.remap);
        if (index == 41) return storeWhole(info.remap8[r], whole);
        return storeWhole(info.remap24[r][static_cast<std::size_t>(index - 38)], whole);
    }
    case FieldKind::Door: {
        DoorRec* door = doorAt(entry, at.door);
        if (!door) return FieldStore::NoSuchField;
        return storeWhole(door->*doorMember(index), whole);
    }
    case FieldKind::Name:
        break;
    }
    return FieldStore::NoSuchField;
}

} // namespace torquil
