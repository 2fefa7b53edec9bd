// Car packs of the open level: the preview names what a pack changes, and a pack built from the
// .bak originals turns them back into the edited files, once.

#include "car_pack_outcome.h"
#include "session/car_pack.h"
#include "session/car_pack_preview.h"

#include "cars/car_fields.h"
#include "cars/car_names_io.h"
#include "cli_runner.h"
#include "exchange/sprite_exchange.h"
#include "fake_platform.h"
#include "fxt_coder.h"
#include "sample_level.h"
#include "session/edits.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "session/style_session.h"
#include "sprites/sprite_info.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using namespace torquil;
namespace tb = torquil::testing;
namespace fs = std::filesystem;

namespace {

// The sample level in a temporary folder, loaded like the editor loads it, saved with a registry
// of backups of its own.
struct CarPackFixture : ::testing::Test {
    tb::TempDir dir;
    tb::FakePlatform platform;
    std::unique_ptr<StyleSession> session;
    BackupRegistry backups;
    fs::path style = dir / "STYLE001.G24";
    fs::path fxt = dir / "ENGLISH.FXT";
    fs::path pack = dir / "CARS.GC3";
    std::vector<std::uint8_t> originalStyle, originalFxt;

    void SetUp() override {
        tb::writeSampleLevel(dir.path());
        originalStyle = tb::readFile(style);
        originalFxt = tb::readFile(fxt);
        load();
    }
    void load(const fs::path& file = {}) {
        AppOptions app;
        app.workDir = dir / "work";
        fs::create_directories(app.workDir);
        session = std::make_unique<StyleSession>(app);
        prepareStyle(session->style, file.empty() ? style : file, kLoadSprites);
        ASSERT_TRUE(initHeader(*session, platform, standardLoaders()));
        platform.shownMessages.clear();
    }
    void save() {
        SaveOptions options;
        options.backups = &backups;
        ASSERT_EQ(saveChanges(*session, platform, options).result, SaveResult::Saved);
    }
    // A car of the level and its absolute sprite number.
    int someCar() const {
        for (int asn = 1; asn < static_cast<int>(session->cars.slots.size()); ++asn)
            if (session->cars.slots[static_cast<std::size_t>(asn)].inUse &&
                !session->cars.slots[static_cast<std::size_t>(asn)].name.empty())
                return asn;
        ADD_FAILURE() << "no car";
        return 0;
    }
    // A field as the car editor changes it: on a copy, handed to the session's edit.
    void editCarField(int asn, const char* field, const std::string& text) {
        const CarEntry* car = session->cars.find(asn);
        ASSERT_NE(car, nullptr);
        CarEntry edited = *car;
        ASSERT_EQ(setFieldText(edited, carFieldByName(field)->index, text), FieldStore::Stored);
        ASSERT_TRUE(editCar(*session, asn, CarEdit{edited.info, std::nullopt, std::nullopt}));
    }
    // Exports the sprite, changes `count` pixels of its first row in the BMP, imports it back.
    void importEditedSprite(int asn, int count) {
        ASSERT_EQ(searchNSelect(*session, platform, asn), SearchResult::Selected);
        const fs::path bmp = exportSprite(*session, platform);
        ASSERT_FALSE(bmp.empty());
        auto file = tb::readFile(bmp);
        const SpriteRec& sprite = *session->selectedSprite();
        const std::size_t rowLength = (sprite.W + 3u) & ~3u;
        const std::size_t top = 1078 + (sprite.H - 1u) * rowLength; // rows are stored bottom-up
        for (int x = 0; x < count; ++x)
            file[top + x] = static_cast<std::uint8_t>(file[top + x] ^ 1);
        tb::writeFile(bmp, file);
        ASSERT_TRUE(importSprite(*session, platform));
    }
    // The pack of the saved edits against the .bak originals (the file itself where the save
    // had no reason to write it).
    void build() {
        const CarPackFiles bak = levelBackups(session->style);
        ASSERT_TRUE(writeCarPack(style, bak.style.empty() ? style : bak.style, fxt,
                                 bak.fxt.empty() ? fxt : bak.fxt, pack, platform))
            << (messages().empty() ? "" : messages().back());
    }
    CarPackPreview preview() {
        CarPackFile parsed;
        EXPECT_TRUE(readCarPack(pack, parsed, platform));
        const Gc3Merged merged = mergeGc3Pack(parsed.pack, parsed.trailer, parsed.originals,
                                              {style, originalStyle}, {fxt, originalFxt});
        EXPECT_TRUE(merged.applied.ok()) << merged.applied.message();
        return previewCarPack(parsed.pack, *session, originalStyle, originalFxt, merged.style,
                              merged.fxt);
    }
    std::vector<std::string> messages() const { return platform.messageTexts(); }
};

// ---- The preview names what a pack changes ---------------------------------------------------

TEST_F(CarPackFixture, PreviewOfACarRecordNamesTheCarItsAsnAndTheFields) {
    const int asn = someCar();
    const std::string maxSpeed =
        fieldText(*session->cars.find(asn), carFieldByName("max_speed")->index);
    const std::string grip = fieldText(*session->cars.find(asn), carFieldByName("grip")->index);
    editCarField(asn, "max_speed", "123");
    editCarField(asn, "grip", "7");
    save();
    build();
    const CarPackPreview p = preview();
    EXPECT_EQ(p.packLevel, 1);
    EXPECT_TRUE(p.forOpenLevel());
    ASSERT_EQ(p.cars.size(), 1u);
    EXPECT_EQ(p.cars[0].asn, asn);
    EXPECT_EQ(p.cars[0].name, session->cars.find(asn)->name);
    EXPECT_EQ(p.cars[0].fields, (std::vector<std::string>{"max_speed", "grip"}));
    EXPECT_TRUE(p.names.empty());
    EXPECT_TRUE(p.sprites.empty());
    EXPECT_TRUE(p.cluts.empty());
    EXPECT_FALSE(p.deltaStore);
    EXPECT_TRUE(p.otherSections.empty());
    EXPECT_EQ(p.fxtBytesChanged, 0);
    EXPECT_EQ(p.cars[0].changes, (std::vector<std::string>{"Max Speed: " + maxSpeed + " -> 123",
                                                           "Grip: " + grip + " -> 7"}));
    // Each car by name and model, each field by its caption with the old and the new value.
    const auto lines = carPackPreviewLines(p);
    const auto at = std::find(lines.begin(), lines.end(),
                              "  " + p.cars[0].name + " (model " + std::to_string(p.cars[0].model) +
                                  ", ASN " + std::to_string(asn) + ")");
    ASSERT_NE(at, lines.end());
    ASSERT_LT(at + 2, lines.end());
    EXPECT_EQ(*(at + 1), "    Max Speed: " + maxSpeed + " -> 123");
    EXPECT_EQ(*(at + 2), "    Grip: " + grip + " -> 7");
}

TEST_F(CarPackFixture, PreviewOfARenamedCarGivesTheModelAndBothNames) {
    const int asn = someCar();
    const int model = session->cars.find(asn)->info.model;
    const std::string before = session->names.nameOf(model);
    ASSERT_TRUE(renameCarModel(*session, model, "Zipper"));
    save();
    build();
    const CarPackPreview p = preview();
    ASSERT_EQ(p.names.size(), 1u);
    EXPECT_EQ(p.names[0].model, model);
    EXPECT_EQ(p.names[0].before, before);
    EXPECT_EQ(p.names[0].after, "Zipper");
    // A renamed car is listed by its name, never as a bare model number.
    const auto lines = carPackPreviewLines(p);
    EXPECT_NE(std::find(lines.begin(), lines.end(),
                        "  Zipper (model " + std::to_string(model) + "): \"" + before +
                            "\" -> \"Zipper\""),
              lines.end());
    EXPECT_FALSE(p.otherTexts);
    EXPECT_EQ(p.styleBytesChanged, 0);
    // The texts after a name of another length only move.
    ASSERT_NE(before.size(), std::string("Zipper").size());
    EXPECT_GT(p.fxtBytesMoved, 0);
    EXPECT_LE(p.fxtBytesChanged, 16);
    EXPECT_GT(p.fxtBytesMoved, p.fxtBytesChanged);
    EXPECT_TRUE(p.cars.empty());
    EXPECT_TRUE(p.sprites.empty());
}

TEST_F(CarPackFixture, PreviewOfAnImportedSpriteGivesItsPageAsnCarAndPixels) {
    const int asn = someCar();
    importEditedSprite(asn, 5);
    const SpriteRec sprite = *session->selectedSprite();
    save();
    build();
    const CarPackPreview p = preview();
    ASSERT_EQ(p.sprites.size(), 1u);
    EXPECT_EQ(p.sprites[0].page, sprite.page);
    EXPECT_EQ(p.sprites[0].asn, asn);
    EXPECT_EQ(p.sprites[0].car, session->cars.find(asn)->name);
    EXPECT_EQ(p.sprites[0].pixels, 5);
    EXPECT_TRUE(p.cars.empty());
    EXPECT_TRUE(p.cluts.empty());
    EXPECT_TRUE(p.otherSections.empty());
}

TEST_F(CarPackFixture, PreviewOfAChangedClutGivesItsNumberAndTheSpritesDrawnThroughIt) {
    ASSERT_EQ(searchNSelect(*session, platform, someCar()), SearchResult::Selected);
    const SpriteRec sprite = *session->selectedSprite();
    session->colours.entry(sprite.clut, 9)[0] ^= 0x40;
    session->style.gClutChanged = true;
    save();
    build();
    const CarPackPreview p = preview();
    ASSERT_EQ(p.cluts.size(), 1u);
    EXPECT_EQ(p.cluts[0].clut, sprite.clut);
    EXPECT_NE(std::find(p.cluts[0].asns.begin(), p.cluts[0].asns.end(), sprite.ASN),
              p.cluts[0].asns.end());
    EXPECT_EQ(p.styleBytesChanged, 1);
    EXPECT_TRUE(p.sprites.empty());
    EXPECT_TRUE(p.otherSections.empty());
    // Told under the sprite drawn through it.
    const auto lines = carPackPreviewLines(p);
    const auto at = std::find(lines.begin(), lines.end(),
                              "  ASN " + std::to_string(sprite.ASN) + ": no pixel changed");
    ASSERT_NE(at, lines.end());
    ASSERT_NE(at + 1, lines.end());
    EXPECT_EQ(*(at + 1), "    colours changed: CLUT " + std::to_string(sprite.clut));
}

TEST_F(CarPackFixture, PreviewTellsTheDeltaStoreOtherSectionsAndAnotherLevel) {
    // Hand-made runs: one byte of the header, one of the delta store.
    std::vector<std::uint8_t> changed = originalStyle;
    changed[0] ^= 1;
    const auto store = static_cast<std::size_t>(session->deltas.deltaStart - 1);
    changed[store] ^= 1;
    fs::create_directories(dir / "mod");
    tb::writeFile(dir / "mod" / "STYLE001.G24", changed);
    // A text of ENGLISH.FXT that is not a car name.
    auto entries = tb::sampleFxtEntries();
    entries.front() += "!";
    tb::writeFile(dir / "mod" / "ENGLISH.FXT", tb::encodeFxt(entries));
    ASSERT_TRUE(writeGC3(dir / "mod" / "STYLE001.G24", style, dir / "mod" / "ENGLISH.FXT", fxt,
                         pack, platform));
    CarPackPreview p = preview();
    EXPECT_TRUE(p.deltaStore);
    EXPECT_EQ(p.otherSections, std::vector<std::string>{"header"});
    EXPECT_EQ(p.styleBytesChanged, 2);
    EXPECT_TRUE(p.otherTexts);
    EXPECT_TRUE(p.names.empty());

    session->style.gMapNumber = 2;
    session->style.gStyleFileName = "STYLE002.G24";
    p = preview();
    EXPECT_FALSE(p.forOpenLevel());
    EXPECT_EQ(carPackPreviewLines(p)[1], "Not for STYLE002.G24, which is level 2 (Sierra Bay)");
}

// The first thing a preview names: "car", "sprite", "CLUT", "delta store" or a section's name.
std::string firstNamed(const CarPackPreview& p) {
    if (!p.cars.empty()) return "car";
    if (!p.sprites.empty()) return "sprite";
    if (!p.cluts.empty()) return "CLUT";
    if (p.deltaStore) return "delta store";
    return p.otherSections.empty() ? "" : p.otherSections.front();
}

TEST_F(CarPackFixture, EverySectionOfBothKindsIsNamedWhereTheBuilderPutIt) {
    struct Case {
        const char* expected;
        tb::Section tb::SectionOffsets::*section;
    };
    using S = tb::SectionOffsets;
    const std::vector<Case> shared = {
        {"header", &S::header},          {"tiles", &S::tiles},
        {"object info", &S::objectInfo}, {"car", &S::carInfo},
        {"sprite info", &S::spriteInfo}, {"sprite", &S::pages},
        {"delta store", &S::deltaStore}, {"sprite numbers", &S::spriteNumbers}};
    struct Level {
        const char* file;
        tb::StyleSpec layout;
        std::vector<Case> own;
    };
    const std::vector<Level> levels = {{"STYLE001.G24",
                                        tb::sampleSpec24(),
                                        {{"CLUT", &S::clut}, {"palette index", &S::paletteIndex}}},
                                       {"STYLE002.GRY",
                                        tb::sampleSpec8(),
                                        {{"8-bit palette", &S::palette},
                                         {"remaps", &S::remaps},
                                         {"remap index", &S::remapIndex}}}};
    for (const Level& level : levels) {
        const fs::path file = dir / level.file;
        load(file);
        const auto before = tb::readFile(file);
        const tb::SectionOffsets at = tb::sectionOffsets(level.layout);
        std::vector<Case> cases = shared;
        cases.insert(cases.end(), level.own.begin(), level.own.end());
        for (const Case& c : cases) {
            const tb::Section& section = at.*(c.section);
            SCOPED_TRACE(std::string(level.file) + ": " + c.expected);
            ASSERT_GT(section.size, 0u);
            auto changed = before;
            changed[section.offset + section.size / 2] ^= 0x11;
            fs::create_directories(dir / "mod");
            tb::writeFile(dir / "mod" / level.file, changed);
            ASSERT_TRUE(writeGC3(dir / "mod" / level.file, file, fxt, fxt, pack, platform));
            const Result<Gc3Pack> parsed = parseGc3(tb::readFile(pack));
            ASSERT_TRUE(parsed.ok()) << parsed.message();
            const CarPackPreview p =
                previewCarPack(*parsed, *session, before, originalFxt, changed, originalFxt);
            EXPECT_EQ(firstNamed(p), c.expected);
            EXPECT_EQ(p.styleBytesChanged, 1);
        }
    }
}

TEST_F(CarPackFixture, GrownDeltaStoreIsNamedWithTheHeaderAndTheSpriteNumbersAsMoved) {
    RunLine* grown = nullptr;
    for (DeltaRec& d : session->deltas.myDeltas)
        for (RunLine& run : d.runLine)
            if (!grown && run.length > 0 && run.length < 250) grown = &run;
    ASSERT_NE(grown, nullptr);
    grown->length = static_cast<std::uint8_t>(grown->length + 2);
    grown->data.resize(grown->length, 0x42);
    session->style.gDeltasChanged = true;
    save();
    build();
    const CarPackPreview p = preview();
    EXPECT_EQ(p.styleLengthAfter, p.styleLengthBefore + 2);
    EXPECT_TRUE(p.deltaStore);
    EXPECT_TRUE(p.cars.empty());
    EXPECT_TRUE(p.sprites.empty());
    EXPECT_EQ(p.otherSections, (std::vector<std::string>{"header", "sprite info"}));
    // The sprite numbers after the store only moved: counted apart, not as changes.
    ASSERT_FALSE(p.movedSections.empty());
    EXPECT_EQ(p.movedSections.back().section, "sprite numbers");
    EXPECT_GT(p.movedSections.back().bytes, 0);
    EXPECT_GT(p.styleBytesMoved, p.styleBytesChanged);
}

// ---- Round trip and refusals -----------------------------------------------------------------

TEST_F(CarPackFixture, PackFromTheBakOriginalsTurnsThemIntoTheEditedFilesOnce) {
    const int asn = someCar();
    editCarField(asn, "max_speed", "99");
    editCarField(asn, "handbrake_friction", "1.5");
    ASSERT_TRUE(renameCarModel(*session, session->cars.find(asn)->info.model, "Roundtrip"));
    importEditedSprite(asn, 3);
    save();
    const auto editedStyle = tb::readFile(style);
    const auto editedFxt = tb::readFile(fxt);
    ASSERT_NE(editedStyle, originalStyle);
    ASSERT_NE(editedFxt, originalFxt);

    const CarPackFiles bak = levelBackups(session->style);
    ASSERT_EQ(bak.style, fs::path(style.string() + ".bak"));
    ASSERT_EQ(bak.fxt, fs::path(fxt.string() + ".bak"));
    build();
    const CarPackPreview p = preview();
    EXPECT_EQ(p.cars.size(), 1u);
    EXPECT_EQ(p.names.size(), 1u);
    EXPECT_EQ(p.sprites.size(), 1u);

    // Back to the originals, as another modder has them; then the pack.
    tb::writeFile(style, tb::readFile(bak.style));
    tb::writeFile(fxt, tb::readFile(bak.fxt));
    BackupRegistry fresh;
    platform.shownMessages.clear();
    EXPECT_EQ(tb::applyOutcome(applyCarPack(pack, levelFiles(session->style), platform, fresh)),
              "applied");
    EXPECT_EQ(tb::readFile(style), editedStyle);
    EXPECT_EQ(tb::readFile(fxt), editedFxt);
    EXPECT_EQ(tb::readFile(bak.style), originalStyle); // the .bak copies are kept
    EXPECT_EQ(tb::readFile(bak.fxt), originalFxt);

    // A second time is refused, and says why.
    EXPECT_EQ(tb::applyOutcome(applyCarPack(pack, levelFiles(session->style), platform, fresh)),
              "refused");
    ASSERT_FALSE(messages().empty());
    EXPECT_NE(messages().back().find("already applied"), std::string::npos) << messages().back();
    EXPECT_EQ(tb::readFile(style), editedStyle);
    EXPECT_EQ(tb::readFile(fxt), editedFxt);
}

TEST_F(CarPackFixture, PackWithoutTrailerAppliesOnceAndIsThenRefusedByItsContent) {
    editCarField(someCar(), "max_speed", "88");
    save();
    build();
    const auto editedStyle = tb::readFile(style);
    // A pack as other programs write it: the records end the file.
    auto bytes = tb::readFile(pack);
    bytes.resize(bytes.size() - kGc3TrailerSize);
    tb::writeFile(pack, bytes);
    tb::writeFile(style, tb::readFile(style.string() + ".bak"));

    BackupRegistry fresh;
    EXPECT_EQ(tb::applyOutcome(applyCarPack(pack, levelFiles(session->style), platform, fresh)),
              "applied");
    EXPECT_EQ(tb::readFile(style), editedStyle);
    platform.shownMessages.clear();
    EXPECT_EQ(tb::applyOutcome(applyCarPack(pack, levelFiles(session->style), platform, fresh)),
              "refused");
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0], "This GC3 car pack is already applied: STYLE001.G24 and ENGLISH.FXT "
                             "already hold its changes.\rNothing was written.");
}

TEST_F(CarPackFixture, PacksThatDoNotBelongAreRefusedWithNothingChanged) {
    editCarField(someCar(), "max_speed", "77");
    save();
    build();
    const auto goodPack = tb::readFile(pack);
    tb::writeFile(style, tb::readFile(style.string() + ".bak"));

    struct Case {
        const char* name;
        std::function<void(CarPackFiles&)> arrange;
        std::string result;
        std::string message;
    };
    const std::vector<Case> cases = {
        {"another level",
         [&](CarPackFiles& f) {
             f.style = dir / "other" / "STYLE002.G24";
             fs::create_directories(f.style.parent_path());
             tb::writeFile(f.style, originalStyle);
         },
         "refused", "is for level 1 (Port Alder), but STYLE002.G24 is level 2"},
        {"damaged pack",
         [&](CarPackFiles&) {
             auto bytes = goodPack;
             tb::putI32(bytes, kGc3HeaderSize + 4, 1 << 30); // the first run's length
             tb::writeFile(pack, bytes);
         },
         "failed", "Error reading GC3 file."},
        {"a style file too short for it",
         [&](CarPackFiles& f) {
             f.style = dir / "short" / "STYLE001.G24";
             fs::create_directories(f.style.parent_path());
             tb::writeFile(f.style, std::vector<std::uint8_t>(originalStyle.begin(),
                                                              originalStyle.begin() + 1000));
         },
         "refused", "STYLE001.G24: its sections have moved since the pack was made"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        tb::writeFile(pack, goodPack);
        CarPackFiles files = levelFiles(session->style);
        c.arrange(files);
        const auto styleBefore = tb::readFile(files.style);
        const auto fxtBefore = tb::readFile(files.fxt);
        platform.shownMessages.clear();
        BackupRegistry fresh;
        EXPECT_EQ(tb::applyOutcome(applyCarPack(pack, files, platform, fresh)), c.result);
        ASSERT_EQ(messages().size(), 1u);
        EXPECT_NE(messages()[0].find(c.message), std::string::npos) << messages()[0];
        EXPECT_EQ(tb::readFile(files.style), styleBefore);
        EXPECT_EQ(tb::readFile(files.fxt), fxtBefore);
        EXPECT_FALSE(fs::exists(files.style.string() + "~gc3"));
    }
}

TEST_F(CarPackFixture, ResultsTheEditorCannotOpenAreNeitherPackedNorApplied) {
    // A changed style file whose header no longer adds up to its length.
    auto broken = originalStyle;
    broken.resize(broken.size() - 100);
    fs::create_directories(dir / "mod");
    tb::writeFile(dir / "mod" / "STYLE001.G24", broken);
    const std::vector<std::uint8_t> old = {'o', 'l', 'd'};
    tb::writeFile(pack, old);
    EXPECT_FALSE(writeCarPack(dir / "mod" / "STYLE001.G24", style, fxt, fxt, pack, platform));
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_EQ(messages()[0].rfind("Error writing GC3 file.\rThe changed files would not open in "
                                  "the editor:\r",
                                  0),
              0u)
        << messages()[0];
    EXPECT_EQ(tb::readFile(pack), old);

    // The same pack written without the check, and without the trailer as other programs write
    // it: applying it runs the same checks on what it would give, and writes nothing.
    ASSERT_TRUE(writeGC3(dir / "mod" / "STYLE001.G24", style, fxt, fxt, pack, platform));
    auto bytes = tb::readFile(pack);
    const Result<Gc3Pack> parsed = parseGc3(bytes);
    ASSERT_TRUE(parsed.ok()) << parsed.message();
    bytes.resize(static_cast<std::size_t>(std::max(
        {kGc3HeaderSize, parsed->header.StyleDataPositionEnd, parsed->header.FXTDataPositionEnd})));
    tb::writeFile(pack, bytes);
    platform.shownMessages.clear();
    BackupRegistry fresh;
    const CarPackApplied applied = applyCarPack(pack, levelFiles(session->style), platform, fresh);
    EXPECT_EQ(tb::applyOutcome(applied), "refused");
    EXPECT_NE(applied.message().find("would give files the editor cannot open"), std::string::npos)
        << applied.message();
    EXPECT_EQ(tb::readFile(style), originalStyle);
    EXPECT_FALSE(fs::exists(style.string() + ".bak"));
}

// ---- Packs that stack ------------------------------------------------------------------------

// Another car than the pack's, as it is in the sample level.
int otherCar(const StyleSession& s, int not_) {
    for (int asn = 1; asn < static_cast<int>(s.cars.slots.size()); ++asn)
        if (asn != not_ && s.cars.slots[static_cast<std::size_t>(asn)].inUse) return asn;
    return 0;
}

TEST_F(CarPackFixture, PackOntoALevelEditedElsewhereGivesBothEditsAndConflictsAreNamed) {
    const int asn = someCar();
    editCarField(asn, "max_speed", "66");
    save();
    build();
    // The level as another modder has it: the originals, then an edit of another car.
    tb::writeFile(style, originalStyle);
    tb::writeFile(fxt, originalFxt);
    fs::remove(style.string() + ".bak");
    fs::remove(fxt.string() + ".bak");
    load();
    const int other = otherCar(*session, asn);
    ASSERT_NE(other, 0);
    editCarField(other, "grip", "9");
    save();
    const auto editedElsewhere = tb::readFile(style);

    auto applied = tb::runCli({"gc3", "apply", pack.string(), style.string(), fxt.string(),
                               "--workdir", (dir / "work").string()});
    ASSERT_EQ(applied.status, 0) << applied.err;
    EXPECT_EQ(applied.out, "GC3 car pack CARS.GC3 applied to:\n  " + style.string() +
                               " (as it was: " + style.string() + ".bak)\n");
    EXPECT_EQ(tb::readFile(fxt), originalFxt); // no name change: ENGLISH.FXT is not rewritten
    EXPECT_FALSE(fs::exists(fxt.string() + ".bak"));
    load();
    EXPECT_EQ(fieldText(*session->cars.find(asn), carFieldByName("max_speed")->index), "66");
    EXPECT_EQ(fieldText(*session->cars.find(other), carFieldByName("grip")->index), "9");

    // The same car's field changed since: refused, the car and field named, nothing written.
    tb::writeFile(style, editedElsewhere);
    load();
    editCarField(asn, "max_speed", "33");
    save();
    const auto conflicting = tb::readFile(style);
    platform.shownMessages.clear();
    BackupRegistry fresh;
    const CarPackApplied refused = applyCarPack(pack, levelFiles(session->style), platform, fresh);
    EXPECT_EQ(tb::applyOutcome(refused), "refused");
    EXPECT_EQ(refused.error().conflicts,
              std::vector<std::string>{session->cars.find(asn)->name + " (ASN " +
                                       std::to_string(asn) + "): Max Speed"});
    ASSERT_EQ(messages().size(), 1u);
    EXPECT_NE(messages()[0].find("changed since it was made"), std::string::npos) << messages()[0];
    EXPECT_EQ(tb::readFile(style), conflicting);
    EXPECT_EQ(tb::readFile(fxt), originalFxt);
}

TEST_F(CarPackFixture, CommandLineShowsThePreviewAsTextAndJson) {
    const int asn = someCar();
    editCarField(asn, "max_speed", "55");
    save();
    build();
    // Shown against the files it would change: the originals, back in their place.
    tb::writeFile(style, tb::readFile(style.string() + ".bak"));
    const std::string bak = style.string();
    const std::string work = (dir / "work").string();
    auto text = tb::runCli({"gc3", "show", pack.string(), bak, fxt.string(), "--workdir", work});
    ASSERT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(text.out.substr(0, 37), "Car pack for level 1 (Port Alder)\nSty");
    EXPECT_NE(text.out.find("Car records:\n  " + session->cars.find(asn)->name + " (model " +
                            std::to_string(session->cars.find(asn)->info.model) + ", ASN " +
                            std::to_string(asn) + ")\n    Max Speed: "),
              std::string::npos)
        << text.out;

    auto json =
        tb::runCli({"gc3", "show", pack.string(), bak, fxt.string(), "--json", "--workdir", work});
    ASSERT_EQ(json.status, 0) << json.err;
    const auto j = nlohmann::json::parse(json.out);
    EXPECT_EQ(j["level"], 1);
    EXPECT_EQ(j["car_records"][0]["asn"], asn);
    EXPECT_EQ(j["car_records"][0]["fields"][0], "max_speed");
    EXPECT_EQ(j["car_records"][0]["changes"][0].get<std::string>().substr(0, 11), "Max Speed: ");
    EXPECT_TRUE(j["sprites"].empty());

    // Shown against files whose bytes it changes were changed since: refused as apply refuses.
    load();
    editCarField(asn, "max_speed", "44");
    save();
    auto misfit = tb::runCli({"gc3", "show", pack.string(), bak, fxt.string(), "--workdir", work});
    EXPECT_EQ(misfit.status, 1);
    EXPECT_NE(misfit.err.find("message:   " + session->cars.find(asn)->name + " (ASN " +
                              std::to_string(asn) + "): Max Speed"),
              std::string::npos)
        << misfit.err;
}

} // namespace
