#include "cars/car_record_fields.h"

#include "cars/car_info.h"

namespace torquil {

namespace {

struct FieldSpan {
    int offset;       // first byte
    int width;        // bytes of one element
    int count;        // elements (1 for a plain field)
    const char* name; // record field name
};

// The fixed part of the record in file order (174 bytes).
constexpr FieldSpan kSpans[] = {
    {0, 2, 1, "width"},
    {2, 2, 1, "height"},
    {4, 2, 1, "depth"},
    {6, 2, 1, "spr_num"},
    {8, 2, 1, "weight"},
    {10, 2, 1, "max_speed"},
    {12, 2, 1, "min_speed"},
    {14, 2, 1, "acceleration"},
    {16, 2, 1, "braking"},
    {18, 2, 1, "grip"},
    {20, 2, 1, "handling"},
    {22, 6, 12, "remap24"},
    {94, 1, 12, "remap8"},
    {106, 1, 1, "vtype"},
    {107, 1, 1, "model"},
    {108, 1, 1, "turning"},
    {109, 1, 1, "damagable"},
    {110, 2, 4, "value"},
    {118, 1, 1, "cx"},
    {119, 1, 1, "cy"},
    {120, 4, 1, "moment"},
    {124, 4, 1, "rbp_mass"},
    {128, 4, 1, "g1_thrust"},
    {132, 4, 1, "tyre_adhesion_x"},
    {136, 4, 1, "tyre_adhesion_y"},
    {140, 4, 1, "handbrake_friction"},
    {144, 4, 1, "footbrake_friction"},
    {148, 4, 1, "front_brake_bias"},
    {152, 2, 1, "turn_ratio"},
    {154, 2, 1, "drive_wheel_offset"},
    {156, 2, 1, "steering_wheel_offset"},
    {158, 4, 1, "back_end_slide_value"},
    {162, 4, 1, "handbrake_slide_value"},
    {166, 1, 1, "convertible"},
    {167, 1, 1, "engine"},
    {168, 1, 1, "radio"},
    {169, 1, 1, "horn"},
    {170, 1, 1, "sound_function"},
    {171, 1, 1, "fast_change_flag"},
    {172, 2, 1, "doors"},
};

} // namespace

std::string carRecordFieldAt(int offset) {
    if (offset < 0) return {};
    if (offset >= CarInfo::kFixedSize)
        return "door " + std::to_string((offset - CarInfo::kFixedSize) / CarInfo::kDoorSize + 1);
    for (const FieldSpan& f : kSpans) {
        if (offset < f.offset || offset >= f.offset + f.width * f.count) continue;
        if (f.count == 1) return f.name;
        return std::string(f.name) + "[" + std::to_string((offset - f.offset) / f.width) + "]";
    }
    return {};
}

} // namespace torquil
