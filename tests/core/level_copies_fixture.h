#pragma once
// Copies of the sample level in one temporary folder, for car packs made on one copy and applied
// to another: `pristine` as the builder wrote it, and folders made from it by name.

#include "session/car_pack.h"

#include "cars/car_fields.h"
#include "cli_runner.h"
#include "exchange/sprite_exchange.h"
#include "exchange_fixture.h"
#include "fake_platform.h"
#include "sample_level.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/picture_file.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "session/sprite_resize.h"
#include "session/style_session.h"
#include "sprites/sprite_info.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <functional>

namespace torquil::testing {

namespace fs = std::filesystem;

struct LevelCopiesFixture : ::testing::Test {
    TempDir dir;
    FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    BackupRegistry backups;

    void SetUp() override { writeSampleLevel(dir / "pristine"); }
    fs::path styleIn(const std::string& folder) const { return dir / folder / "STYLE001.G24"; }
    fs::path fxtIn(const std::string& folder) const { return dir / folder / "ENGLISH.FXT"; }
    void copyPristine(const std::string& folder) {
        fs::create_directories(dir / folder);
        for (const char* name : {"STYLE001.G24", "ENGLISH.FXT"})
            fs::copy_file(dir / "pristine" / name, dir / folder / name,
                          fs::copy_options::overwrite_existing);
    }
    void load(const std::string& folder) {
        AppOptions app;
        app.workDir = dir / "work";
        fs::create_directories(app.workDir);
        session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, styleIn(folder), kLoadSprites);
        ASSERT_EQ(initHeader(*session, platform, standardLoaders()), LoadOutcome::Loaded);
        platform.shownMessages.clear();
    }
    void save() {
        SaveOptions options;
        options.backups = &backups;
        ASSERT_EQ(saveChanges(*session, platform, options).result, SaveResult::Saved)
            << (platform.messageTexts().empty() ? "" : platform.messageTexts().back());
    }
    // Two named cars of the level whose sprites have deltas.
    std::pair<int, int> twoCars() {
        std::vector<int> cars;
        for (int asn = 1; asn < static_cast<int>(session->cars.slots.size()); ++asn)
            if (session->cars.slots[static_cast<std::size_t>(asn)].inUse &&
                !session->cars.slots[static_cast<std::size_t>(asn)].name.empty() &&
                searchNSelect(*session, platform, asn) == SearchResult::Selected &&
                session->selectedSprite()->delta_count > 0)
                cars.push_back(asn);
        EXPECT_GE(cars.size(), 2u);
        return cars.size() < 2 ? std::pair{0, 0} : std::pair{cars[0], cars[1]};
    }
    std::string field(int asn, const char* name) const {
        return fieldText(*session->cars.find(asn), carFieldByName(name)->index);
    }
    void editField(int asn, const char* name, const std::string& text) {
        CarEntry edited = *session->cars.find(asn);
        ASSERT_EQ(setFieldText(edited, carFieldByName(name)->index, text), FieldStore::Stored);
        ASSERT_TRUE(editCar(*session, asn, CarEdit{edited.info, std::nullopt, std::nullopt}));
    }
    // The car's sprite with its first row's pixels changed, through the BMP export and import.
    void repaintSprite(int asn) {
        ASSERT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
        const SpriteRec& sprite = *session->selectedSprite();
        std::vector<std::uint8_t> pixels = spritePixels(*session, sprite);
        for (int x = 0; x < sprite.W; ++x)
            pixels[static_cast<std::size_t>(x)] = static_cast<std::uint8_t>(1 + x % 7);
        const fs::path bmp = dir / "repainted.bmp";
        ASSERT_TRUE(writePicture(*session, platform, bmp, pixels, sprite.clut, sprite.W, sprite.H));
        ASSERT_TRUE(importSpriteFrom(*session, platform, bmp));
    }
    // The car's sprite made a quarter as wide and high: it keeps its top-left corner, and the
    // deltas that no longer fit are dropped, so the delta store at the end of the sprite graphics
    // shrinks and every later section moves. Returns the new width.
    int shrinkDroppingDeltas(int asn) {
        EXPECT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
        const SpriteRec& sprite = *session->selectedSprite();
        const int w = std::max(4, sprite.W / 4), h = std::max(4, sprite.H / 4);
        const ResizePlan plan = planSpriteResize(*session, sprite, w, h);
        EXPECT_TRUE(plan.possible) << plan.why;
        EXPECT_EQ(plan.place.kind, PlaceKind::OldPlace);
        EXPECT_FALSE(plan.unfitDeltas.empty());
        const fs::path bmp = dir / "resized.bmp";
        EXPECT_TRUE(
            writePicture(*session, platform, bmp, patternPixels(w, h, 3), sprite.clut, w, h));
        EXPECT_TRUE(importSpriteResizing(*session, platform, bmp, {true, true}));
        return w;
    }
    // A pack of what `edit` does to a copy of the pristine level.
    fs::path packOf(const std::string& name, const std::function<void()>& edit) {
        copyPristine(name);
        load(name);
        edit();
        save();
        const fs::path pack = dir / (name + ".GC3");
        EXPECT_TRUE(writeCarPack(styleIn(name), styleIn("pristine"), fxtIn(name), fxtIn("pristine"),
                                 pack, platform));
        return pack;
    }
};

} // namespace torquil::testing
