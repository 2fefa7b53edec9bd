// The edit functions every change goes through, the pending-error scope, reading from memory and
// the names of exported bitmaps.

#include "base/binary_file.h"
#include "base/runtime_error.h"
#include "exchange/bitmap_names.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

struct SampleSession {
    tb::TempDir dir, work;
    StyleSession s{AppOptions{false, work.path(), {}}};
    tb::FakePlatform p;
    SampleSession() {
        tb::writeSampleLevel(dir.path());
        prepareStyle(s.style, dir / "STYLE001.G24", kLoadSprites);
    }
    bool load() { return initHeader(s, p, standardLoaders()).ok(); }
    int firstCar() const {
        for (std::size_t asn = 1; asn < s.cars.slots.size(); ++asn)
            if (s.cars.slots[asn].inUse) return static_cast<int>(asn);
        return 0;
    }
};

} // namespace

TEST(Edits, CarEditAppliesTheRecordQueuesTheCarAndRenamesItsModel) {
    SampleSession f;
    ASSERT_TRUE(f.load()) << f.s.stepText;
    const int asn = f.firstCar();
    ASSERT_GT(asn, 0);
    EXPECT_FALSE(f.s.style.anyChange());

    CarEdit edit;
    edit.info = f.s.cars.find(asn)->info;
    edit.info->rbp_mass = 1234;
    edit.name = "Zoomer";
    ASSERT_TRUE(editCar(f.s, asn, edit));
    const CarEntry& car = *f.s.cars.find(asn);
    EXPECT_EQ(car.info.rbp_mass, 1234);
    EXPECT_EQ(car.name, "Zoomer");
    EXPECT_EQ(f.s.names.names[static_cast<std::size_t>(car.info.model)], "Zoomer");
    EXPECT_EQ(f.s.style.gSaveCarInfo,
              (std::vector<std::int16_t>{0, static_cast<std::int16_t>(asn)}));
    EXPECT_TRUE(f.s.style.gCarNamesChanged);

    // A name alone queues no record.
    f.s.style.clearDirtyFlags();
    ASSERT_TRUE(editCar(f.s, asn, CarEdit{{}, {}, std::string("Zippy")}));
    EXPECT_EQ(f.s.style.gSaveCarInfo.size(), 1u);
    EXPECT_TRUE(f.s.style.gCarNamesChanged);
}

TEST(Edits, CarEditRefusesANameOutsideTheTableButKeepsTheRecord) {
    SampleSession f;
    ASSERT_TRUE(f.load()) << f.s.stepText;
    const int asn = f.firstCar();
    const std::string before = f.s.cars.find(asn)->name;
    CarEdit edit;
    edit.info = f.s.cars.find(asn)->info;
    edit.info->model = kCarNameCount; // no place in the names table
    edit.name = "Nowhere";
    EXPECT_FALSE(editCar(f.s, asn, edit));
    EXPECT_EQ(f.s.cars.find(asn)->info.model, kCarNameCount);
    EXPECT_EQ(f.s.cars.find(asn)->name, before);
    EXPECT_EQ(f.s.style.gSaveCarInfo.size(), 2u);
    EXPECT_FALSE(f.s.style.gCarNamesChanged);

    EXPECT_FALSE(editCar(f.s, 0, edit)); // no car there: nothing happens
    EXPECT_EQ(f.s.style.gSaveCarInfo.size(), 2u);
}

TEST(Edits, ClutOverwriteChangesTheColoursAndMarksTheClut) {
    SampleSession f;
    ASSERT_TRUE(f.load()) << f.s.stepText;
    BmpColourTable table{};
    table[5] = {1, 2, 3, 0};
    ASSERT_TRUE(overwriteClut(f.s, 0, table));
    EXPECT_EQ(f.s.colours.entry(0, 5), (std::array<std::uint8_t, 3>{3, 2, 1}));
    EXPECT_TRUE(f.s.style.gClutChanged);
    f.s.style.clearDirtyFlags();
    EXPECT_FALSE(overwriteClut(f.s, f.s.colours.gClutsAvail + 1, table));
    EXPECT_FALSE(f.s.style.gClutChanged);
}

TEST(Edits, BitmapNamesTellTheSprite) {
    auto t = bitmapTarget("KRBSPR1_57.bmp", 1);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->kind, BitmapTarget::Sprite);
    EXPECT_EQ(t->number, 57);
    t = bitmapTarget("c_car3_12.BMP", 3);
    ASSERT_TRUE(t);
    EXPECT_EQ(t->kind, BitmapTarget::Car);
    EXPECT_FALSE(bitmapTarget("KRBTIL1_99999999999.bmp", 1)); // too large a number
    EXPECT_FALSE(bitmapTarget("KRBSPR99999999999_1.bmp", 1));
    EXPECT_FALSE(bitmapTarget("KRBSPR1_57.bmp.txt", 1));
}

TEST(PendingErrorScope, KeepsTheCallersErrorAndPassesOnItsOwnWhenNoneWasPending) {
    ErrorState errors;
    errors.raise(err::FileNotFound, "caller");
    {
        const PendingErrorScope fresh(errors);
        EXPECT_FALSE(errors.hasPending());
        errors.raise(err::SubscriptOutOfRange, "inside");
    }
    EXPECT_EQ(errors.pending(), err::FileNotFound);
    EXPECT_EQ(errors.where(), "caller");

    errors.clear();
    {
        const PendingErrorScope fresh(errors);
        errors.raise(err::SubscriptOutOfRange, "inside");
    }
    EXPECT_EQ(errors.pending(), err::SubscriptOutOfRange);
}

TEST(PendingErrorScope, ALoaderKeepsAnErrorItsCallerHadPending) {
    SampleSession f;
    ASSERT_TRUE(f.load()) << f.s.stepText;
    BinaryFile file(f.s.errors);
    ASSERT_TRUE(file.open(f.s.style.path, BinaryFile::Mode::Read));
    f.s.errors.raise(err::BadRecordNumber, "earlier");
    EXPECT_TRUE(loadSpriteNumbers(f.s, file, f.p)); // its own run has no error
    EXPECT_EQ(f.s.errors.pending(), err::BadRecordNumber);
}

TEST(BinaryFile, BytesInMemoryReadAndWriteLikeAFile) {
    ErrorState errors;
    std::vector<std::uint8_t> bytes{0x01, 0x02, 0x03};
    BinaryFile f(errors);
    f.openBytes(bytes);
    EXPECT_TRUE(f.isOpen());
    EXPECT_EQ(f.length(), 3);
    EXPECT_EQ(f.readI16(), 0x0201);
    EXPECT_EQ(f.readI16(), 0x0003); // past the end reads zeros
    EXPECT_TRUE(f.atEnd());
    f.seek(6);
    f.writeU8(0xAA); // the gap fills with zeros
    EXPECT_EQ(bytes, (std::vector<std::uint8_t>{1, 2, 3, 0, 0, 0xAA}));
    EXPECT_EQ(f.length(), 6);
    EXPECT_FALSE(errors.hasPending());
    f.close();
    f.seek(1);
    EXPECT_EQ(errors.pending(), err::BadFileNameOrNumber);
}
