#include "cars/car_field_notes.h"

#include "cars/car_info.h"
#include "cars/fixed_point.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace torquil {

namespace {

constexpr std::array<CarFieldNote, kCarFieldCount> kNotes{{
    {0, "pixels", "Width of the box the game uses for collisions, across the car."},
    {1, "pixels", "Length of the collision box, along the car (front to back)."},
    {2, "pixels", "Height of the collision box above the road."},
    {3, "sprite number",
     "The car's sprite counted from the first car sprite (relative sprite number). The game "
     "draws the car with this sprite."},
    {4, "", "How heavy the car counts in a crash: a heavier car pushes a lighter one aside."},
    {5, "game speed units", "Top speed going forwards."},
    {6, "game speed units", "Top speed in reverse (the game stores it as a speed below zero)."},
    {7, "", "How quickly the car gains speed."},
    {8, "", "How quickly the car stops when braking."},
    {9, "", "How well the tyres hold the road before the car slides."},
    {10, "", "How readily the car answers the steering."},
    {11, "code", "Kind of vehicle; 4 is a standard car."},
    {12, "model number",
     "Which model of its vehicle type the car is; the model also picks the car's name in "
     "ENGLISH.FXT."},
    {13, "", "How sharply the car can turn."},
    {14, "", "How easily the car takes damage: lower values wreck sooner."},
    {15, "pixels",
     "Across-the-car offset of the centre of mass from the sprite's centre; the car turns "
     "about this point."},
    {16, "pixels", "Along-the-car offset of the centre of mass from the sprite's centre."},
    {17, "raw integer",
     "Resistance to turning (moment of inertia), shown as the stored integer: higher turns "
     "slower and spins less."},
    {18, "16.16 real", "Mass in the physics model; a very low mass makes the car uncontrollable."},
    {19, "16.16 real", "Engine force in first gear: how hard the car pulls away."},
    {20, "16.16 real", "Sideways tyre grip: resistance to sliding sideways."},
    {21, "16.16 real", "Forward tyre grip: how much of the thrust reaches the road."},
    {22, "16.16 real", "Friction of the handbrake on the rear wheels."},
    {23, "16.16 real", "Friction of the footbrake on all wheels."},
    {24, "16.16 real", "Share of the braking done by the front wheels."},
    {25, "", "Ratio between the steering input and the wheels' angle."},
    {26, "pixels", "Where the driven wheels sit, from the car's centre along its length."},
    {27, "pixels", "Where the steered wheels sit, from the car's centre along its length."},
    {28, "16.16 real", "How much the back end slides out in a fast turn."},
    {29, "16.16 real", "How much the back end slides out with the handbrake on."},
    {30, "flag", "1 when the car is a convertible (its roof is open), else 0."},
    {31, "sound number", "Engine sound from the level's sound bank."},
    {32, "code", "Which kind of radio the driver listens to in the car."},
    {33, "sound number", "Horn sound from the level's sound bank."},
    {34, "sound number",
     "A further sound of the car from the level's sound bank (the third play button plays it)."},
    {35, "flag", "1 when the car changes gear fast, else 0."},
    {36, "doors", "Number of opening doors; each has a record on the Doors page (shown only)."},
    {37, "x $1000",
     "What the car is worth at the cranes, in thousands of dollars; one value for all four "
     "cranes."},
    {38, "hue", "Hue of the selected 24-bit remap: shifts the colour of the car's paint."},
    {39, "lightness", "Lightness change of the selected 24-bit remap."},
    {40, "saturation", "Saturation change of the selected 24-bit remap."},
    {41, "palette index", "Palette colour of the selected 8-bit remap."},
    {42, "text",
     "The car model's name, as ENGLISH.FXT holds it (shared by every car of the model)."},
    {43, "pixels", "Across-the-car position of the selected door, from the car's centre."},
    {44, "pixels", "Along-the-car position of the selected door, from the car's centre."},
    {45, "object number", "The map object the game uses for the door."},
    {46, "delta number",
     "The delta (counted from 0, as the file stores it) that draws the door open."},
}};

std::string number(double v) {
    if (v == std::floor(v)) return std::to_string(static_cast<long long>(v));
    char text[32];
    std::snprintf(text, sizeof text, "%.3f", v);
    return text;
}

bool isRecordNumber(const CarField& f) {
    return f.kind == FieldKind::Integer || f.kind == FieldKind::Fixed || f.kind == FieldKind::Raw;
}

} // namespace

const CarFieldNote* carFieldNote(int index) {
    if (index < 0 || index >= kCarFieldCount) return nullptr;
    return &kNotes[static_cast<std::size_t>(index)];
}

std::string fieldRangeText(int index) {
    const CarField* f = carField(index);
    if (!f) return {};
    if (!f->limited) return "no limit";
    return std::to_string(f->low) + " to " + std::to_string(f->high);
}

std::string fieldDescription(int index) {
    const CarField* f = carField(index);
    const CarFieldNote* note = carFieldNote(index);
    if (!f || !note) return {};
    std::string text(f->caption);
    text += " (" + fieldRangeText(index);
    if (!note->unit.empty()) text += ", " + std::string(note->unit);
    text += ")\n";
    text += note->description;
    if (!f->toolTip.empty()) text += "\n" + std::string(f->toolTip);
    return text;
}

std::optional<ObservedRange> observedRange(const CarTable& cars, int index) {
    const CarField* f = carField(index);
    if (!f || !isRecordNumber(*f)) return std::nullopt;
    ObservedRange range;
    for (const CarEntry& entry : cars.slots) {
        if (!entry.inUse) continue;
        const std::optional<double> value = parseNumber(fieldText(entry, index));
        if (!value) continue;
        if (range.cars == 0) range.low = range.high = *value;
        range.low = std::min(range.low, *value);
        range.high = std::max(range.high, *value);
        ++range.cars;
    }
    if (range.cars == 0) return std::nullopt;
    return range;
}

std::optional<ObservedRange> narrowerObservedRange(const CarTable& cars, int index) {
    const std::optional<ObservedRange> range = observedRange(cars, index);
    const CarField* f = carField(index);
    if (!range || !f->limited) return std::nullopt;
    const double limits = static_cast<double>(f->high - f->low);
    if ((range->high - range->low) * 4 > limits) return std::nullopt;
    return range;
}

std::string observedRangeText(const ObservedRange& range) {
    if (range.low == range.high) return "the level's cars: all " + number(range.low);
    return "the level's cars: " + number(range.low) + " to " + number(range.high);
}

FieldTextState fieldTextState(int index, std::string_view text) {
    const CarField* f = carField(index);
    if (!f || f->kind == FieldKind::Name) return FieldTextState::Number;
    if (parseNumber(text)) return FieldTextState::Number;
    // A text that one more digit turns into a number is a number being typed ("-", ".", "1e").
    std::string more(text);
    while (!more.empty() && (more.back() == ' ' || more.back() == '\t')) more.pop_back();
    if (more.find_first_not_of(" \t") == std::string::npos) return FieldTextState::Unfinished;
    more += '0';
    return parseNumber(more) ? FieldTextState::Unfinished : FieldTextState::NotANumber;
}

} // namespace torquil
