#include "cars/car_fields.h"
#include "cars/car_listing.h"
#include "cars/fixed_point.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

using namespace torquil;

TEST(FixedPoint, StoredValueToTextRoundsHalvesAwayFromZero) {
    EXPECT_EQ(float32in(98304), "1.500");
    EXPECT_EQ(float32in(-32768), "-0.500");
    EXPECT_EQ(float32in(0), "0.000");
    EXPECT_EQ(float32in(65536 * 12), "12.000");
    // 4096/65536 = 0.0625 and 20480/65536 = 0.3125 lie exactly halfway between thousandths.
    EXPECT_EQ(float32in(4096), "0.063");
    EXPECT_EQ(float32in(-4096), "-0.063");
    EXPECT_EQ(float32in(20480), "0.313");
    EXPECT_EQ(float32in(-20480), "-0.313");
    EXPECT_EQ(float32in(4095), "0.062");
    // Below half a thousandth: zero, keeping the sign as the original's formatting did.
    EXPECT_EQ(float32in(1), "0.000");
    EXPECT_EQ(float32in(-1), "-0.000");
    EXPECT_EQ(float32in(std::numeric_limits<std::int32_t>::max()), "32768.000");
    EXPECT_EQ(float32in(std::numeric_limits<std::int32_t>::min()), "-32768.000");
}

TEST(FixedPoint, TextToStoredValueRoundsHalvesToEven) {
    EXPECT_EQ(float32out("1.5"), 98304);
    EXPECT_EQ(float32out("2.5"), 163840);
    EXPECT_EQ(float32out("-0.5"), -32768);
    EXPECT_EQ(float32out("0.0000076"), 0);
    EXPECT_EQ(float32out("0.0000077"), 1);
    // Exactly 0.5, 1.5 and 2.5 sixty-five-thousand-five-hundred-and-thirty-sixths.
    EXPECT_EQ(float32out("0.00000762939453125"), 0);
    EXPECT_EQ(float32out("0.00002288818359375"), 2);
    EXPECT_EQ(float32out("0.00003814697265625"), 2);
    EXPECT_EQ(float32out("-0.00002288818359375"), -2);
    EXPECT_EQ(float32out(" 2.5 "), 163840);
    EXPECT_EQ(float32out(".5"), 32768);
    EXPECT_EQ(float32out("abc"), 0);
    EXPECT_EQ(float32out(""), 0);
    EXPECT_EQ(float32out("-"), 0);
    EXPECT_EQ(float32out("1e9"), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(float32out("-1e9"), std::numeric_limits<std::int32_t>::min());
}

TEST(FixedPoint, EveryThreeDecimalTextSurvivesTheStoredValue) {
    char text[32];
    for (long long k = -32000000; k <= 32000000; k += 997) {
        std::snprintf(text, sizeof text, "%s%lld.%03lld", k < 0 ? "-" : "", (k < 0 ? -k : k) / 1000,
                      (k < 0 ? -k : k) % 1000);
        ASSERT_EQ(float32in(float32out(text)), text);
    }
}

TEST(FixedPoint, NumbersAreWholeBoxTexts) {
    EXPECT_EQ(parseNumber("12"), 12.0);
    EXPECT_EQ(parseNumber("+3.25"), 3.25);
    EXPECT_EQ(parseNumber("1e3"), 1000.0);
    for (const char* text : {"", " ", "-", ".", "-.", "12abc", "inf", "nan", "1,5", "--1", "0x10"})
        EXPECT_FALSE(parseNumber(text).has_value()) << '"' << text << '"';
    EXPECT_EQ(wholeNumber(2.5), 2);
    EXPECT_EQ(wholeNumber(3.5), 4);
    EXPECT_EQ(wholeNumber(-2.5), -2);
}

TEST(CarFieldTable, RowsAreTheEditorBoxesInIndexOrder) {
    ASSERT_EQ(carFields().size(), 47u);
    for (int i = 0; i < kCarFieldCount; ++i) EXPECT_EQ(carFields()[i].index, i);
    EXPECT_EQ(carField(17)->caption, "Moment");
    EXPECT_EQ(carField(17)->kind, FieldKind::Raw);
    EXPECT_EQ(carField(18)->toolTip, "Total Mass (don't set too low)");
    EXPECT_EQ(carField(27)->caption, "Steeringwheel offset");
    EXPECT_EQ(carField(24)->caption, "Frontbrake Bias");
    EXPECT_EQ(carField(37)->toolTip, "X $1000 (Value at all 4 cranes assumed equal)");
    EXPECT_EQ(carField(43)->caption, "RPX:");
    EXPECT_EQ(carField(47), nullptr);
    EXPECT_EQ(carField(-1), nullptr);
    EXPECT_EQ(carFieldByName("RBP_MASS")->index, 18);
    EXPECT_EQ(carFieldByName("front_brake_bias")->index, 24);
    EXPECT_EQ(carFieldByName("nonsense"), nullptr);
    int fixed = 0;
    for (const CarField& f : carFields()) fixed += f.kind == FieldKind::Fixed;
    EXPECT_EQ(fixed, 9);
}

TEST(CarFieldValidation, OutOfRangeTextsBecomeTheLimitWithTheReport) {
    auto check = [](int box, const std::string& text) { return clampFieldText(box, text); };
    FieldCheck c = check(0, "300");
    EXPECT_EQ(c.text, "255");
    EXPECT_EQ(c.report, "txtbox valve set to H val");
    EXPECT_TRUE(c.clamped);
    c = check(3, "-5");
    EXPECT_EQ(c.text, "0");
    EXPECT_EQ(c.report, "txtbox valve set to L val");
    EXPECT_EQ(check(15, "-300").text, "-255");
    EXPECT_EQ(check(17, "2000000001").text, "2000000000");
    EXPECT_EQ(check(46, "256").text, "255");
    EXPECT_EQ(check(41, "-1").text, "0");
    // 16.16 boxes: the limit is on the real value, not on the stored one.
    c = check(18, "2.5");
    EXPECT_FALSE(c.clamped);
    EXPECT_EQ(c.text, "2.5");
    EXPECT_EQ(check(18, "32000.4").text, "32000.4");
    EXPECT_EQ(check(18, "32000.7").text, "32000");
    EXPECT_EQ(check(29, "-40000").text, "-32000");
    // In range, at the limits.
    EXPECT_FALSE(check(0, "255").clamped);
    EXPECT_FALSE(check(0, "0").clamped);
}

TEST(CarFieldValidation, UnfinishedTextsAndUnlimitedBoxesAreLeftAlone) {
    for (const char* text : {"-", ".", "-.", "", "abc"}) {
        FieldCheck c = clampFieldText(4, text);
        EXPECT_EQ(c.text, text);
        EXPECT_FALSE(c.isNumber);
        EXPECT_TRUE(c.report.empty());
    }
    for (int box : {38, 39, 40}) {
        FieldCheck c = clampFieldText(box, "-99999");
        EXPECT_EQ(c.text, "-99999");
        EXPECT_TRUE(c.isNumber);
        EXPECT_FALSE(c.clamped);
    }
    EXPECT_EQ(clampFieldText(42, "99999").text, "99999");
    EXPECT_FALSE(clampFieldText(42, "99999").clamped);
    EXPECT_EQ(textOnLeave(""), "0");
    EXPECT_EQ(textOnLeave("  "), "0");
    EXPECT_EQ(textOnLeave("-"), "-");
    EXPECT_EQ(textOnLeave("7"), "7");
}

namespace {
CarEntry sampleEntry() {
    CarEntry e;
    e.inUse = true;
    e.name = "Taxi";
    e.info.width = 22;
    e.info.rbp_mass = 78643;
    e.info.moment = 229376;
    e.info.value = {10, 15, 20, 25};
    e.info.remap24[3] = {45, -2, 20};
    e.info.remap8[3] = 77;
    e.doorList = {{1, 2, 3, 4}, {-5, -6, 7, 8}};
    return e;
}
} // namespace

TEST(CarFieldText, BoxesShowTheirFieldAsTheEditorDoes) {
    const CarEntry e = sampleEntry();
    EXPECT_EQ(fieldText(e, 0), "22");
    EXPECT_EQ(fieldText(e, 18), "1.200");
    EXPECT_EQ(fieldText(e, 17), "229376");
    EXPECT_EQ(fieldText(e, 37), "10");
    EXPECT_EQ(fieldText(e, 42), "Taxi");
    EXPECT_EQ(fieldText(e, 38, {3, 0}), "45");
    EXPECT_EQ(fieldText(e, 39, {3, 0}), "-2");
    EXPECT_EQ(fieldText(e, 41, {3, 0}), "77");
    EXPECT_EQ(fieldText(e, 38, {12, 0}), "");
    EXPECT_EQ(fieldText(e, 43, {0, 1}), "-5");
    EXPECT_EQ(fieldText(e, 46, {0, 1}), "8");
    EXPECT_EQ(fieldText(e, 46, {0, 2}), "");
    EXPECT_EQ(fieldText(e, 99), "");
}

TEST(CarFieldText, TextsAreWrittenBackIntoTheRecord) {
    CarEntry e = sampleEntry();
    EXPECT_EQ(setFieldText(e, 18, "2.5"), FieldStore::Stored);
    EXPECT_EQ(e.info.rbp_mass, 163840);
    EXPECT_EQ(setFieldText(e, 37, "7"), FieldStore::Stored);
    EXPECT_EQ(e.info.value, (std::array<std::int16_t, 4>{7, 7, 7, 7}));
    EXPECT_EQ(setFieldText(e, 0, "2.5"), FieldStore::Stored);
    EXPECT_EQ(e.info.width, 2); // whole numbers round halves to even
    EXPECT_EQ(setFieldText(e, 0, "3.5"), FieldStore::Stored);
    EXPECT_EQ(e.info.width, 4);
    EXPECT_EQ(setFieldText(e, 17, "-2000000000"), FieldStore::Stored);
    EXPECT_EQ(e.info.moment, -2000000000);
    EXPECT_EQ(setFieldText(e, 36, "3"), FieldStore::Stored);
    EXPECT_EQ(e.info.doors, 3);
    EXPECT_EQ(e.doorList.size(), 2u); // the door records are not made by the count
    EXPECT_EQ(setFieldText(e, 40, "-20", {3, 0}), FieldStore::Stored);
    EXPECT_EQ(e.info.remap24[3][2], -20);
    EXPECT_EQ(setFieldText(e, 41, "200", {11, 0}), FieldStore::Stored);
    EXPECT_EQ(e.info.remap8[11], 200);
    EXPECT_EQ(setFieldText(e, 45, "99", {0, 1}), FieldStore::Stored);
    EXPECT_EQ(e.doorList[1].object, 99);
    EXPECT_EQ(setFieldText(e, 42, "Cab"), FieldStore::Stored);
    EXPECT_EQ(e.name, "Cab");
}

TEST(CarFieldText, TextsTheRecordCannotTakeChangeNothing) {
    const CarEntry original = sampleEntry();
    CarEntry e = original;
    EXPECT_EQ(setFieldText(e, 0, "abc"), FieldStore::NotANumber);
    EXPECT_EQ(setFieldText(e, 0, ""), FieldStore::NotANumber);
    EXPECT_EQ(setFieldText(e, 15, "-5"), FieldStore::DoesNotFit); // cx is a byte
    EXPECT_EQ(setFieldText(e, 38, "40000", {0, 0}), FieldStore::DoesNotFit);
    EXPECT_EQ(setFieldText(e, 18, "40000"), FieldStore::DoesNotFit);
    EXPECT_EQ(setFieldText(e, 38, "1", {12, 0}), FieldStore::NoSuchField);
    EXPECT_EQ(setFieldText(e, 43, "1", {0, 2}), FieldStore::NoSuchField);
    EXPECT_EQ(setFieldText(e, 47, "1"), FieldStore::NoSuchField);
    EXPECT_EQ(fieldText(e, 15), fieldText(original, 15));
    EXPECT_EQ(e.info.remap24, original.info.remap24);
    EXPECT_EQ(e.info.rbp_mass, original.info.rbp_mass);
    EXPECT_EQ(e.info.width, original.info.width);
}

TEST(CarFieldNames, ListingNamesAddressTheBoxes) {
    auto at = [](const char* name) { return carFieldAddress(name); };
    EXPECT_EQ(at("width")->index, 0);
    EXPECT_EQ(at("value")->index, 37);
    EXPECT_EQ(at("name")->index, 42);
    EXPECT_EQ(at("remap24[11].S")->index, 40);
    EXPECT_EQ(at("remap24[11].S")->at.remap, 11);
    EXPECT_EQ(at("remap8[2]")->index, 41);
    EXPECT_EQ(at("remap8[2]")->at.remap, 2);
    EXPECT_EQ(at("door[3].delta")->index, 46);
    EXPECT_EQ(at("door[3].delta")->at.door, 3);
    for (const char* bad :
         {"remap24[12].H", "remap24.H", "remap24[1]", "door.rpx", "door[x].rpx", "door[-1].rpx",
          "door[1]rpx", "width[0]", "value[0]", "doors[0]", "", "remap8[]", "remap8[1"})
        EXPECT_FALSE(at(bad).has_value()) << bad;
}

TEST(CarFieldNames, EveryListedRecordValueCanBeSetByItsName) {
    // Each scalar and array item of the listing goes back through its box, except value[i]
    // (the editor has one box for all four values).
    CarEntry e = sampleEntry();
    for (const NamedValue& v : carRecordValues(e.info)) {
        if (v.name.rfind("value[", 0) == 0) continue;
        const auto address = carFieldAddress(v.name);
        ASSERT_TRUE(address.has_value()) << v.name;
        EXPECT_EQ(fieldText(e, address->index, address->at), v.text) << v.name;
    }
    for (const NamedValue& v : carDoorValues(e.doorList)) {
        const auto address = carFieldAddress(v.name);
        ASSERT_TRUE(address.has_value()) << v.name;
        EXPECT_EQ(fieldText(e, address->index, address->at), v.text) << v.name;
    }
}
