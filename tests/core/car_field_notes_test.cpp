#include "cars/car_field_notes.h"
#include "cars/car_info.h"

#include <gtest/gtest.h>

using namespace torquil;

namespace {

CarTable tableOfWidths(std::initializer_list<std::int16_t> widths) {
    CarTable table;
    for (std::int16_t w : widths) {
        CarEntry entry;
        entry.inUse = true;
        entry.info.width = w;
        entry.info.rbp_mass = 65536 * 3 / 2; // 1.5 in every car
        table.slots.push_back(entry);
    }
    table.slots.push_back(CarEntry{}); // a slot not in use counts for nothing
    return table;
}

} // namespace

TEST(CarFieldNotes, EveryFieldIsDescribedWithItsCaptionAndRange) {
    for (const CarField& field : carFields()) {
        const CarFieldNote* note = carFieldNote(field.index);
        ASSERT_NE(note, nullptr) << field.index;
        EXPECT_EQ(note->index, field.index);
        EXPECT_FALSE(note->description.empty()) << field.field;
        const std::string text = fieldDescription(field.index);
        EXPECT_EQ(text.rfind(std::string(field.caption) + " (", 0), 0u) << text;
        EXPECT_NE(text.find(fieldRangeText(field.index)), std::string::npos) << text;
        if (!field.toolTip.empty()) {
            EXPECT_NE(text.find(field.toolTip), std::string::npos);
        }
    }
    EXPECT_EQ(fieldDescription(0), "Width (0 to 255, pixels)\nWidth of the box the game uses for "
                                   "collisions, across the car.\nCollision Checking X");
    EXPECT_EQ(fieldRangeText(38), "no limit");
    EXPECT_EQ(carFieldNote(47), nullptr);
    EXPECT_EQ(fieldDescription(-1), "");
}

TEST(CarFieldNotes, TextStateTellsUnfinishedNumbersFromText) {
    for (const char* text : {"12", "-3", "2.5", " 7 ", "1e3"})
        EXPECT_EQ(fieldTextState(0, text), FieldTextState::Number) << text;
    for (const char* text : {"", " ", "-", ".", "-.", "1e", "+"})
        EXPECT_EQ(fieldTextState(0, text), FieldTextState::Unfinished) << text;
    for (const char* text : {"abc", "12x", "--", "1.2.3", "x1"})
        EXPECT_EQ(fieldTextState(18, text), FieldTextState::NotANumber) << text;
    EXPECT_EQ(fieldTextState(42, "any name"), FieldTextState::Number); // the name box
}

TEST(CarFieldNotes, ObservedRangeOverTheCarsInUse) {
    const CarTable table = tableOfWidths({12, 40, 25});
    const auto width = observedRange(table, 0);
    ASSERT_TRUE(width);
    EXPECT_EQ(width->low, 12);
    EXPECT_EQ(width->high, 40);
    EXPECT_EQ(width->cars, 3);
    EXPECT_EQ(observedRangeText(*width), "the level's cars: 12 to 40");
    // 16.16 fields by their real value.
    const auto mass = observedRange(table, 18);
    ASSERT_TRUE(mass);
    EXPECT_EQ(observedRangeText(*mass), "the level's cars: all 1.500");
    // Remap, name and door boxes, and an empty table, have none.
    EXPECT_FALSE(observedRange(table, 38));
    EXPECT_FALSE(observedRange(table, 43));
    EXPECT_FALSE(observedRange(CarTable{}, 0));
}

TEST(CarFieldNotes, OnlyAMuchNarrowerRangeIsWorthTelling) {
    // Width allows 0 to 255: a span of 63 is a quarter of it or less, 64 is not.
    EXPECT_TRUE(narrowerObservedRange(tableOfWidths({0, 63}), 0));
    EXPECT_FALSE(narrowerObservedRange(tableOfWidths({0, 64}), 0));
    // Mass allows -32000 to 32000: every car at 1.5 is worth telling.
    EXPECT_TRUE(narrowerObservedRange(tableOfWidths({1}), 18));
}
