// Car list edits (one box with the editor's limits, through editCar) and Find Car's matching.

#include "session/car_edit.h"
#include "session/car_find.h"
#include "session/edits.h"
#include "session/style_session.h"

#include <gtest/gtest.h>

using namespace torquil;

namespace {

// Why an edit was refused; a stored edit fails the test.
CarFieldRefusal refusalOf(const Result<std::string, CarFieldFailure>& edited) {
    EXPECT_FALSE(edited) << "stored, with the report \"" << edited.valueOr({}) << "\"";
    return edited ? CarFieldRefusal::NoSuchField : edited.error().refusal;
}

// Three cars: 5 and 9 of model 12, 7 of model 3.
struct CarEditFixture : ::testing::Test {
    StyleSession session;

    void SetUp() override {
        session.cars.slots.resize(10);
        for (auto [asn, model] : {std::pair{5, 12}, {7, 3}, {9, 12}}) {
            CarEntry& car = session.cars.slots[static_cast<std::size_t>(asn)];
            car.inUse = true;
            car.info.model = static_cast<std::uint8_t>(model);
            car.info.width = 40;
            car.name = "Old";
        }
        session.cars.highest = 9;
        session.names.names[12] = "Old";
    }
    const CarInfo& info(int asn) { return session.cars.find(asn)->info; }
};

} // namespace

TEST_F(CarEditFixture, AFieldIsClampedToTheEditorsLimitsAndQueued) {
    const auto high = editCarField(session, 7, 0, "300");
    ASSERT_TRUE(high);
    EXPECT_EQ(info(7).width, 255);
    EXPECT_EQ(*high, "txtbox valve set to H val");
    const auto low = editCarField(session, 7, 3, "-5");
    ASSERT_TRUE(low);
    EXPECT_EQ(info(7).spr_num, 0);
    EXPECT_EQ(*low, "txtbox valve set to L val");
    EXPECT_EQ(session.style.gSaveCarInfo, (std::vector<std::int16_t>{0, 7, 7}));
    EXPECT_FALSE(session.style.gCarNamesChanged);
}

TEST_F(CarEditFixture, FixedPointAndValueFieldsStoreAsTheEditorDoes) {
    EXPECT_TRUE(editCarField(session, 5, 18, "2.5"));
    EXPECT_EQ(info(5).rbp_mass, 163840);
    EXPECT_TRUE(editCarField(session, 5, 37, "12"));
    EXPECT_EQ(info(5).value, (std::array<std::int16_t, 4>{12, 12, 12, 12}));
    // An empty text counts as 0, as when an editor box loses the focus.
    EXPECT_TRUE(editCarField(session, 5, 1, "  "));
    EXPECT_EQ(info(5).height, 0);
}

TEST_F(CarEditFixture, RejectedTextsChangeAndQueueNothing) {
    EXPECT_EQ(refusalOf(editCarField(session, 5, 0, "wide")), CarFieldRefusal::NotANumber);
    const auto wide = editCarField(session, 5, 15, "200");
    EXPECT_EQ(refusalOf(wide), CarFieldRefusal::DoesNotFit);
    EXPECT_EQ(wide.message(),
              "the game reads cx as one signed byte (-128 to 127): 200 would be read as -56");
    EXPECT_EQ(refusalOf(editCarField(session, 6, 0, "1")), CarFieldRefusal::NoSuchCar);
    EXPECT_EQ(refusalOf(editCarField(session, 5, 47, "1")), CarFieldRefusal::NoSuchField);
    EXPECT_EQ(info(5).width, 40);
    EXPECT_EQ(session.style.gSaveCarInfo.size(), 1u);
}

TEST_F(CarEditFixture, ANameGoesToTheModelAndEveryCarOfIt) {
    session.names.fromFxt = true;
    session.names.keys[12] = "[car12]";
    EXPECT_TRUE(editCarField(session, 5, 42, "Swift"));
    EXPECT_EQ(session.names.names[12], "Swift");
    EXPECT_EQ(session.cars.find(9)->name, "Swift");
    EXPECT_EQ(session.cars.find(7)->name, "Old");
    EXPECT_TRUE(session.style.gCarNamesChanged);
    EXPECT_EQ(session.style.gSaveCarInfo.size(), 1u); // a name is no record write
}

TEST_F(CarEditFixture, ANameTheSaveWouldDropIsRefusedWithItsReason) {
    // Built-in names: no ENGLISH.FXT to write a name into.
    auto named = editCarField(session, 5, 42, "Swift");
    EXPECT_EQ(refusalOf(named), CarFieldRefusal::NameRefused);
    EXPECT_NE(named.message().find("no ENGLISH.FXT"), std::string::npos) << named.message();
    session.names.fromFxt = true;
    // ENGLISH.FXT without an entry for model 12.
    named = editCarField(session, 5, 42, "Swift");
    EXPECT_EQ(refusalOf(named), CarFieldRefusal::NameRefused);
    EXPECT_EQ(named.message(), "ENGLISH.FXT has no entry for model 12; its name cannot be saved");
    session.names.keys[12] = "[car12]";
    named = editCarField(session, 5, 42, "Two\rLines");
    EXPECT_EQ(refusalOf(named), CarFieldRefusal::NameRefused);
    EXPECT_NE(named.message().find("line break"), std::string::npos) << named.message();
    EXPECT_EQ(session.names.names[12], "Old");
    EXPECT_FALSE(session.style.gCarNamesChanged);
    // The record part of an edit is kept when its name is refused, and the reason is told.
    session.names.fromFxt = false;
    CarEdit edit;
    edit.info = session.cars.find(5)->info;
    edit.info->width = 41;
    edit.name = "Swift";
    const Result<void> edited = editCar(session, 5, edit);
    ASSERT_FALSE(edited);
    EXPECT_NE(edited.message().find("no ENGLISH.FXT"), std::string::npos) << edited.message();
    EXPECT_EQ(info(5).width, 41);
    EXPECT_EQ(session.names.names[12], "Old");
}

TEST_F(CarEditFixture, FindCarTakesAnAsnAModelOrAPartOfTheName) {
    session.cars.find(7)->name = "Beamer";
    EXPECT_EQ(findCars(session, " 7 "), (std::vector<int>{7}));
    EXPECT_EQ(findCars(session, "400"), (std::vector<int>{400})); // any sprite by its number
    EXPECT_EQ(findCars(session, "model 12"), (std::vector<int>{5, 9}));
    EXPECT_EQ(findCars(session, "M3"), (std::vector<int>{7}));
    EXPECT_EQ(findCars(session, "beam"), (std::vector<int>{7}));
    EXPECT_EQ(findCars(session, "OLD"), (std::vector<int>{5, 9}));
    EXPECT_TRUE(findCars(session, "nothing like it").empty());
    EXPECT_TRUE(findCars(session, "  ").empty());
}

TEST(NextMatch, WalksOnFromTheCurrentCarAndWrapsRound) {
    const std::vector<int> matches{5, 9, 20};
    EXPECT_EQ(nextMatch(matches, 0), 5);
    EXPECT_EQ(nextMatch(matches, 5), 9);
    EXPECT_EQ(nextMatch(matches, 12), 20);
    EXPECT_EQ(nextMatch(matches, 20), 5);
    EXPECT_EQ(nextMatch({}, 3), 0);
}
