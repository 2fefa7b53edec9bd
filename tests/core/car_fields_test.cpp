#include "cars/car_fields.h"
#include "cars/car_listing.h"
#include "cars/fixed_point.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

using namespace torquil;

TEST(FixedPoint, StoredValueToTextRoundsHalvesAwayFromZero) {
    const std::pair<std::int32_t, const char*> cases[] = {
        {98304, "1.500"},
        {-32768, "-0.500"},
        {0, "0.000"},
        {65536 * 12, "12.000"},
        // 4096/65536 = 0.0625 and 20480/65536 = 0.3125 lie exactly between two thousandths.
        {4096, "0.063"},
        {-4096, "-0.063"},
        {20480, "0.313"},
        {-20480, "-0.313"},
        {4095, "0.062"},
        // Under half a thousandth: zero, with the sign of the stored value kept.
        {1, "0.000"},
        {-1, "-0.000"},
        {std::numeric_limits<std::int32_t>::max(), "32768.000"},
        {std::numeric_limits<std::int32_t>::min(), "-32768.000"}};
    for (auto [stored, text] : cases) EXPECT_EQ(float32in(stored), text) << stored;
}

TEST(FixedPoint, TextToStoredValueRoundsHalvesToEven) {
    const std::pair<const char*, std::int32_t> cases[] = {
        {"1.5", 98304},
        {"-0.5", -32768},
        {"0.0000076", 0},
        {"0.0000077", 1},
        {" 2.5 ", 163840},
        {".5", 32768},
        // Exactly 0.5, 1.5 and 2.5 / 65536.
        {"0.00000762939453125", 0},
        {"0.00002288818359375", 2},
        {"0.00003814697265625", 2},
        {"-0.00002288818359375", -2},
        {"abc", 0},
        {"", 0},
        {"-", 0},
        {"1e9", std::numeric_limits<std::int32_t>::max()}};
    for (auto [text, stored] : cases) EXPECT_EQ(float32out(text), stored) << text;
    for (const char* text : {"", " ", "-", ".", "-.", "12abc", "inf", "nan", "1,5", "--1", "0x10"})
        EXPECT_FALSE(parseNumber(text).has_value()) << '"' << text << '"';
}

TEST(FixedPoint, EveryThreeDecimalTextSurvivesTheStoredValue) {
    char text[32];
    for (long long k = -32000000; k <= 32000000; k += 997) {
        const long long a = k < 0 ? -k : k;
        std::snprintf(text, sizeof text, "%s%lld.%03lld", k < 0 ? "-" : "", a / 1000, a % 1000);
        ASSERT_EQ(float32in(float32out(text)), text);
    }
}

TEST(CarFieldValidation, OutOfRangeTextsBecomeTheLimitWithTheReport) {
    FieldCheck c = clampFieldText(0, "300");
    EXPECT_EQ(c.text, "255");
    EXPECT_EQ(c.report, "txtbox valve set to H val");
    c = clampFieldText(3, "-5");
    EXPECT_EQ(c.text, "0");
    EXPECT_EQ(c.report, "txtbox valve set to L val");
    const std::tuple<int, const char*, const char*> cases[] = {
        {15, "-300", "-255"},
        {17, "2000000001", "2000000000"},
        {46, "256", "255"},
        {41, "-1", "0"},
        {0, "255", "255"},
        {36, "32000", "32000"},
        // 16.16 boxes: the limit is on the real value, not on the stored one.
        {18, "2.5", "2.5"},
        {18, "32000.4", "32000.4"},
        {18, "32000.7", "32000"},
        {29, "-40000", "-32000"},
        // Unlimited boxes and texts that are not a number yet.
        {38, "-99999", "-99999"},
        {42, "99999", "99999"},
        {4, "-", "-"},
        {4, ".", "."},
        {4, "-.", "-."},
        {4, "", ""}};
    for (auto [box, text, result] : cases) {
        c = clampFieldText(box, text);
        EXPECT_EQ(c.text, result) << box << ' ' << text;
        EXPECT_EQ(c.clamped, !c.report.empty());
    }
    EXPECT_FALSE(clampFieldText(4, "-.").isNumber);
    EXPECT_EQ(textOnLeave(""), "0");
    EXPECT_EQ(textOnLeave("  "), "0");
    EXPECT_EQ(textOnLeave("-"), "-");
}

namespace {
CarEntry sampleEntry() {
    CarEntry e;
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

TEST(CarFieldText, BoxesShowAndWriteTheirFieldAsTheEditorDoes) {
    CarEntry e = sampleEntry();
    EXPECT_EQ(fieldText(e, 18), "1.200");
    EXPECT_EQ(fieldText(e, 17), "229376");
    EXPECT_EQ(fieldText(e, 37), "10");
    EXPECT_EQ(fieldText(e, 39, {3, 0}), "-2");
    EXPECT_EQ(fieldText(e, 41, {3, 0}), "77");
    EXPECT_EQ(fieldText(e, 43, {0, 1}), "-5");
    EXPECT_EQ(fieldText(e, 46, {0, 2}), "");

    EXPECT_EQ(setFieldText(e, 18, "2.5"), FieldStore::Stored);
    EXPECT_EQ(e.info.rbp_mass, 163840);
    EXPECT_EQ(setFieldText(e, 37, "7"), FieldStore::Stored); // one box for all four cranes
    EXPECT_EQ(e.info.value, (std::array<std::int16_t, 4>{7, 7, 7, 7}));
    EXPECT_EQ(setFieldText(e, 0, "2.5"), FieldStore::Stored);
    EXPECT_EQ(e.info.width, 2); // halves to even
    EXPECT_EQ(setFieldText(e, 36, "3"), FieldStore::Stored);
    EXPECT_EQ(e.doorList.size(), 2u); // the count makes no door records
    EXPECT_EQ(setFieldText(e, 40, "-20", {3, 0}), FieldStore::Stored);
    EXPECT_EQ(e.info.remap24[3][2], -20);
    EXPECT_EQ(setFieldText(e, 45, "99", {0, 1}), FieldStore::Stored);
    EXPECT_EQ(e.doorList[1].object, 99);
    EXPECT_EQ(setFieldText(e, 42, "Cab"), FieldStore::Stored);
    EXPECT_EQ(e.name, "Cab");
}

TEST(CarFieldText, TextsTheRecordCannotTakeChangeNothing) {
    CarEntry e = sampleEntry();
    EXPECT_EQ(setFieldText(e, 0, "abc"), FieldStore::NotANumber);
    // cx and cy are signed bytes: inside the editor's limits (-255 to 255) but not in a byte.
    EXPECT_EQ(setFieldText(e, 15, "200"), FieldStore::DoesNotFit);
    EXPECT_EQ(setFieldText(e, 16, "-129"), FieldStore::DoesNotFit);
    EXPECT_EQ(setFieldText(e, 38, "40000", {0, 0}), FieldStore::DoesNotFit);
    EXPECT_EQ(setFieldText(e, 18, "40000"), FieldStore::DoesNotFit);
    EXPECT_EQ(setFieldText(e, 38, "1", {12, 0}), FieldStore::NoSuchField);
    EXPECT_EQ(setFieldText(e, 43, "1", {0, 2}), FieldStore::NoSuchField);
    EXPECT_EQ(setFieldText(e, 47, "1"), FieldStore::NoSuchField);
    const CarEntry original = sampleEntry();
    EXPECT_EQ(e.info.width, original.info.width);
    EXPECT_EQ(e.info.cx, original.info.cx);
    EXPECT_EQ(e.info.remap24, original.info.remap24);
    EXPECT_EQ(e.info.rbp_mass, original.info.rbp_mass);
}

TEST(CarFieldText, CentreOfMassIsASignedOffsetAndAnUnfitNumberSaysWhatTheGameWouldRead) {
    CarEntry e = sampleEntry();
    EXPECT_EQ(setFieldText(e, 16, "-6"), FieldStore::Stored);
    EXPECT_EQ(fieldText(e, 16), "-6");
    EXPECT_EQ(e.info.cy, -6);
    EXPECT_EQ(setFieldText(e, 15, "127"), FieldStore::Stored);
    EXPECT_EQ(setFieldText(e, 15, "-128"), FieldStore::Stored);
    EXPECT_EQ(doesNotFitReason(16, "250"),
              "the game reads cy as one signed byte (-128 to 127): 250 would be read as -6");
    EXPECT_EQ(doesNotFitReason(15, "-200"),
              "the game reads cx as one signed byte (-128 to 127): -200 would be read as 56");
    EXPECT_EQ(doesNotFitReason(15, "-128"), "");
    EXPECT_EQ(doesNotFitReason(38, "40000"),
              "the record keeps remap24.H in 2 bytes (-32768 to 32767)");
    EXPECT_EQ(doesNotFitReason(18, "40000"),
              "the record keeps rbp_mass in 4 bytes (-2147483648 to 2147483647)");
    EXPECT_EQ(doesNotFitReason(0, "abc"), "");
}

TEST(CarFieldNames, EveryListedValueIsAddressedByItsNameAndNothingElseIs) {
    // Each listed record value goes back to its box, except value[i] (one box for all four).
    const CarEntry e = sampleEntry();
    auto listed = carRecordValues(e.info);
    for (auto&& v : carDoorValues(e.doorList)) listed.push_back(v);
    for (const NamedValue& v : listed) {
        if (v.name.rfind("value[", 0) == 0) continue;
        const auto address = carFieldAddress(v.name);
        ASSERT_TRUE(address.has_value()) << v.name;
        EXPECT_EQ(fieldText(e, address->index, address->at), v.text) << v.name;
    }
    EXPECT_EQ(carFieldAddress("value")->index, 37);
    EXPECT_EQ(carFieldAddress("RBP_MASS")->index, 18);
    for (const char* bad : {"remap24[12].H", "remap24.H", "remap24[1]", "door.rpx", "door[x].rpx",
                            "door[-1].rpx", "door[1]rpx", "width[0]", "value[0]", "", "remap8[1"})
        EXPECT_FALSE(carFieldAddress(bad).has_value()) << bad;
}
