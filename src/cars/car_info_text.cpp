// The car record as text: the details-window dump of one car and its lines in the CARINFO file.

#include "cars/car_info_io.h"

#include "platform/platform.h"

namespace torquil {

namespace {
std::string n(long long v) {
    return std::to_string(v);
}
} // namespace

std::vector<std::string> carInfoDumpLines(const CarEntry& e) {
    const CarInfo& c = e.info;
    std::vector<std::string> out;
    auto line = [&](const std::string& label, long long v) { out.push_back(label + n(v)); };
    out.push_back("car_info fileSeek:" + n(e.fileSeek));
    out.push_back(" Car_Info for:" + e.name);
    line(" width:", c.width);
    line(" height:", c.height);
    line(" depth:", c.depth);
    line(" spr_num:", c.spr_num);
    line(" weight:", c.weight);
    line(" max_speed:", c.max_speed);
    line(" min_speed:", c.min_speed);
    line(" acceleration:", c.acceleration);
    line(" braking:", c.braking);
    line(" grip:", c.grip);
    line(" handling:", c.handling);
    for (std::size_t i = 0; i < c.remap24.size(); ++i) {
        out.push_back(" remap24[" + n(static_cast<long long>(i)) + "]:");
        out.push_back(" H L S: " + n(c.remap24[i][0]) + " " + n(c.remap24[i][1]) + " " +
                      n(c.remap24[i][2]));
    }
    for (std::size_t i = 0; i < c.remap8.size(); ++i)
        line(" remap8[" + n(static_cast<long long>(i)) + "]:", c.remap8[i]);
    line(" vtype:", c.vtype);
    line(" model:", c.model);
    line(" turning:", c.turning);
    line(" damagable:", c.damagable);
    for (std::size_t i = 0; i < c.value.size(); ++i)
        line(" value[" + n(static_cast<long long>(i)) + "]:", c.value[i]);
    // The dump prints the two stored bytes unsigned, as the record's byte fields are listed.
    out.push_back(" cx,cy:" + n(static_cast<std::uint8_t>(c.cx)) + "," +
                  n(static_cast<std::uint8_t>(c.cy)));
    // The 16.16 values as stored, not converted.
    line(" moment:", c.moment);
    line(" rbp_mass:", c.rbp_mass);
    line(" g1_thrust:", c.g1_thrust);
    line(" tyre_adhesion_x:", c.tyre_adhesion_x);
    line(" tyre_adhesion_y:", c.tyre_adhesion_y);
    line(" handbrake_friction:", c.handbrake_friction);
    line(" footbrake_friction:", c.footbrake_friction);
    line(" front_brake_bias:", c.front_brake_bias);
    line(" turn_ratio:", c.turn_ratio);
    line(" drive_wheel_offset:", c.drive_wheel_offset);
    line(" steering_wheel_offset:", c.steering_wheel_offset);
    line(" back_end_slide_value:", c.back_end_slide_value);
    line(" handbrake_slide_value:", c.handbrake_slide_value);
    line(" convertible:", c.convertible);
    line(" engine:", c.engine);
    line(" radio:", c.radio);
    line(" horn:", c.horn);
    line(" sound_function:", c.sound_function);
    line(" fast_change_flag:", c.fast_change_flag);
    line(" doors:", c.doors);
    return out;
}

void dumpCarInfo(const CarTable& cars, Platform& platform, int asn) {
    if (asn <= 0 || asn >= static_cast<int>(cars.slots.size())) return;
    const CarEntry& entry = cars.slots[static_cast<std::size_t>(asn)];
    if (!entry.inUse) return;
    for (const std::string& line : carInfoDumpLines(entry)) platform.detail(line);
}

std::vector<std::string> carInfoDebugText(int asn, const CarEntry& e) {
    const CarInfo& c = e.info;
    // The lines start at the columns of the CARINFO dump file (Tab(5), Tab(11), ...).
    auto at = [](int column) { return std::string(static_cast<std::size_t>(column - 1), ' '); };
    std::vector<std::string> out;
    out.push_back("Sprite(" + n(asn) + ") RSN:" + n(c.spr_num));
    out.push_back(at(5) + " width:" + n(c.width) + " height:" + n(c.height) +
                  " depth:" + n(c.depth) + " doors:" + n(c.doors));
    // The first crane's value stands for the car (the editor assumes all four equal).
    out.push_back(at(11) + " vtype:" + n(c.vtype) + " model:" + n(c.model) + " name:" + e.name +
                  " value:" + n(c.value[0]));
    out.push_back(at(10) + " engine:" + n(c.engine) + " radio:" + n(c.radio) +
                  " horn:" + n(c.horn));
    out.push_back(at(8) + " sound_function:" + n(c.sound_function) +
                  " fast_change_flag:" + n(c.fast_change_flag));
    for (std::size_t d = 0; d < e.doorList.size(); ++d) {
        const DoorRec& door = e.doorList[d];
        out.push_back("     DOOR:" + n(static_cast<long long>(d) + 1) + "   rpx:" + n(door.rpx) +
                      "  rpy:" + n(door.rpy) + "  object:" + n(door.object) +
                      "  delta:" + n(door.delta));
    }
    out.push_back("");
    return out;
}

} // namespace torquil
