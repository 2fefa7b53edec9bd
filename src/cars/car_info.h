#pragma once
// Car info records: 174 bytes of handling and physics per vehicle, plus 8 bytes per door.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace torquil {

struct DoorRec {
    std::int16_t rpx = 0, rpy = 0, object = 0, delta = 0;
    bool operator==(const DoorRec&) const = default;
};

struct CarInfo {
    std::int16_t width = 0, height = 0, depth = 0, spr_num = 0, weight = 0, max_speed = 0,
                 min_speed = 0, acceleration = 0, braking = 0, grip = 0, handling = 0;
    std::array<std::array<std::int16_t, 3>, 12> remap24{}; // H, L, S
    std::array<std::uint8_t, 12> remap8{};
    std::uint8_t vtype = 0, model = 0, turning = 0, damagable = 0;
    std::array<std::int16_t, 4> value{};
    // The centre of mass as pixel offsets: the game reads each byte as a signed number.
    std::int8_t cx = 0, cy = 0;
    std::int32_t moment = 0, rbp_mass = 0, g1_thrust = 0, tyre_adhesion_x = 0, tyre_adhesion_y = 0,
                 handbrake_friction = 0, footbrake_friction = 0, front_brake_bias = 0;
    std::int16_t turn_ratio = 0, drive_wheel_offset = 0, steering_wheel_offset = 0;
    std::int32_t back_end_slide_value = 0, handbrake_slide_value = 0;
    std::uint8_t convertible = 0, engine = 0, radio = 0, horn = 0, sound_function = 0,
                 fast_change_flag = 0;
    std::int16_t doors = 0;

    static constexpr int kFixedSize = 174;
    static constexpr int kDoorSize = 8;
    bool operator==(const CarInfo&) const = default;
};

struct CarEntry {
    bool inUse = false;
    CarInfo info;
    std::vector<DoorRec> doorList;
    std::string name;
    std::int32_t fileSeek = 0; // 1-based position of the record in the style file
    bool operator==(const CarEntry&) const = default;
};

// Qt defines `slots` as a keyword macro; keep the member's name readable in Qt code as well.
#pragma push_macro("slots")
#undef slots

// Loaded entries indexed by absolute sprite number (slot 0 unused).
struct CarTable {
    std::vector<CarEntry> slots{CarEntry{}};
    std::int32_t highest = 0;
    std::int32_t lowest = 32000;
    std::int32_t count = 0;

    [[nodiscard]] CarEntry* find(int asn) {
        if (asn <= 0 || asn >= static_cast<int>(slots.size()) || !slots[asn].inUse) return nullptr;
        return &slots[asn];
    }
};

#pragma pop_macro("slots")

} // namespace torquil
