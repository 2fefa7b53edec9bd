#include "cars/car_record.h"

#include "base/binary_file.h"

namespace torquil {

namespace {

// Walks a record's bytes in field order; every access stays inside the fixed-size array.
template <std::size_t N> class Reader {
public:
    explicit Reader(const std::array<std::uint8_t, N>& b) : b_(b) {}
    void field(std::int16_t& v) { v = getI16(take(2)); }
    void field(std::int32_t& v) { v = getI32(take(4)); }
    void field(std::uint8_t& v) { v = *take(1); }
    void field(std::int8_t& v) { v = static_cast<std::int8_t>(*take(1)); }

private:
    const std::uint8_t* take(std::size_t n) {
        const std::uint8_t* p = b_.data() + at_;
        at_ += n;
        return p;
    }
    const std::array<std::uint8_t, N>& b_;
    std::size_t at_ = 0;
};

template <std::size_t N> class Writer {
public:
    explicit Writer(std::array<std::uint8_t, N>& b) : b_(b) {}
    void field(std::int16_t v) { putI16(take(2), v); }
    void field(std::int32_t v) { putI32(take(4), v); }
    void field(std::uint8_t v) { *take(1) = v; }
    void field(std::int8_t v) { *take(1) = static_cast<std::uint8_t>(v); }

private:
    std::uint8_t* take(std::size_t n) {
        std::uint8_t* p = b_.data() + at_;
        at_ += n;
        return p;
    }
    std::array<std::uint8_t, N>& b_;
    std::size_t at_ = 0;
};

// One list of the fields in file order serves both directions.
template <class Io, class Info> void carFields(Io& io, Info& c) {
    io.field(c.width);
    io.field(c.height);
    io.field(c.depth);
    io.field(c.spr_num);
    io.field(c.weight);
    io.field(c.max_speed);
    io.field(c.min_speed);
    io.field(c.acceleration);
    io.field(c.braking);
    io.field(c.grip);
    io.field(c.handling);
    for (auto& hls : c.remap24)
        for (auto& v : hls) io.field(v);
    for (auto& v : c.remap8) io.field(v);
    io.field(c.vtype);
    io.field(c.model);
    io.field(c.turning);
    io.field(c.damagable);
    for (auto& v : c.value) io.field(v);
    io.field(c.cx);
    io.field(c.cy);
    io.field(c.moment);
    io.field(c.rbp_mass);
    io.field(c.g1_thrust);
    io.field(c.tyre_adhesion_x);
    io.field(c.tyre_adhesion_y);
    io.field(c.handbrake_friction);
    io.field(c.footbrake_friction);
    io.field(c.front_brake_bias);
    io.field(c.turn_ratio);
    io.field(c.drive_wheel_offset);
    io.field(c.steering_wheel_offset);
    io.field(c.back_end_slide_value);
    io.field(c.handbrake_slide_value);
    io.field(c.convertible);
    io.field(c.engine);
    io.field(c.radio);
    io.field(c.horn);
    io.field(c.sound_function);
    io.field(c.fast_change_flag);
    io.field(c.doors);
}

template <class Io, class Door> void doorFields(Io& io, Door& d) {
    io.field(d.rpx);
    io.field(d.rpy);
    io.field(d.object);
    io.field(d.delta);
}

} // namespace

CarInfo decodeCarFixed(const CarFixedBytes& bytes) {
    CarInfo info;
    Reader<CarInfo::kFixedSize> r(bytes);
    carFields(r, info);
    return info;
}

CarFixedBytes encodeCarFixed(const CarInfo& info) {
    CarFixedBytes bytes{};
    Writer<CarInfo::kFixedSize> w(bytes);
    carFields(w, info);
    return bytes;
}

DoorRec decodeDoor(const DoorBytes& bytes) {
    DoorRec door;
    Reader<CarInfo::kDoorSize> r(bytes);
    doorFields(r, door);
    return door;
}

DoorBytes encodeDoor(const DoorRec& door) {
    DoorBytes bytes{};
    Writer<CarInfo::kDoorSize> w(bytes);
    doorFields(w, door);
    return bytes;
}

} // namespace torquil
