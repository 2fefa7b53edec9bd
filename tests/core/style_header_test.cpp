#include "base/work_dir.h"
#include "style/level_name.h"
#include "style/rounding.h"
#include "style/style_file.h"

#include <gtest/gtest.h>

using namespace torquil;

TEST(LevelName, NumberBetweenStyleAndTheDot) {
    EXPECT_EQ(mapNumberFromFileName("STYLE001.G24"), 1);
    EXPECT_EQ(mapNumberFromFileName("style003.gry"), 3);
    EXPECT_EQ(mapNumberFromFileName("STYLE1.G24"), 1);
    EXPECT_EQ(mapNumberFromFileName("MYSTYLE002.GRY"), 2);
    EXPECT_EQ(mapNumberFromFileName("level.G24"), 0);
    EXPECT_EQ(mapNumberFromFileName("STYLE001"), 0);
    EXPECT_EQ(mapNumberFromFileName("STYLEXY.G24"), 0);
}

TEST(LevelName, CaptionWords) {
    EXPECT_EQ(windowCaption("STYLE001.G24", 1, true, 0),
              "Torquil: STYLE001.G24 (Port Alder 24bit) [Sprites]");
    EXPECT_EQ(windowCaption("STYLE003.GRY", 3, false, 1),
              "Torquil: STYLE003.GRY (Palm Reach 8bit) [Tiles]");
    EXPECT_EQ(mapName(2), "Sierra Bay");
    EXPECT_EQ(mapName(0), "Map Name?");
    EXPECT_EQ(mapName(4), "Map Name?");
    EXPECT_EQ(loadOptionText(2), " loadOption?");
    EXPECT_TRUE(isG24FileName("c:/x/style001.g24"));
    EXPECT_FALSE(isG24FileName("STYLE001.G24.bak"));
}

TEST(Rounding, MultiplesStayOthersGoToTheNextMultiple) {
    EXPECT_EQ(roundUp16384(0), 0);
    EXPECT_EQ(roundUp16384(16384), 16384);
    EXPECT_EQ(roundUp16384(16385), 32768);
    EXPECT_EQ(roundUp65536(65537), 131072);
    EXPECT_EQ(roundUp65536(65536), 65536);
}

TEST(SectionMap, SpriteSectionsAreFoundBackwardFromTheRealEnd) {
    StyleFileState s;
    s.header.is24 = true;
    s.header.g24.car_info_size = 348;
    s.header.g24.sprite_info_size = 120;
    s.header.g24.sprite_graphics_size = 70000;
    s.header.g24.sprite_numbers_size = 42;
    s.fileLength = 100000;
    locateSpriteSections(s);
    EXPECT_EQ(s.gSeekCarInfo, 100000 - (348 + 120 + 70000 + 42) + 1);
    EXPECT_EQ(s.gSeekCarInfoEnd, s.gSeekCarInfo + 348);
    EXPECT_EQ(s.gSeekSpriteInfo, s.gSeekCarInfoEnd);
    EXPECT_EQ(s.gSeekGraphicsStart, 100000 - (70000 + 42) + 1);
    EXPECT_EQ(s.gSeekGraphicsEnd, 100000 - 42 + 1);
    EXPECT_EQ(s.gSeekSpriteNumbers, s.gSeekGraphicsEnd);
    // Extra bytes earlier in the file do not move the trailing sections relative to the end.
    s.fileLength += 5000;
    locateSpriteSections(s);
    EXPECT_EQ(s.gSeekGraphicsEnd, 105000 - 42 + 1);
}

TEST(SectionMap, TilePagesEndAtTheRoundedPositionLessTheAnimSize) {
    StyleFileState s;
    s.header.is24 = true;
    s.header.g24.side_size = 3 * 4096;
    s.header.g24.lid_size = 4096;
    s.header.g24.aux_size = 0;
    s.header.g24.anim_size = 41;
    locateTileSections(s);
    EXPECT_EQ(s.gSeekGraphicsStart, 65);
    EXPECT_EQ(s.gSeekGraphicsEnd, 32768 - 41);
    EXPECT_EQ(s.gSeekCarInfo, 0);
    EXPECT_EQ(s.gSeekSpriteInfoEnd, 0);

    // An end position that already is a multiple of 16384 is not rounded further.
    s.header.g24.side_size = 16384 - 65;
    s.header.g24.lid_size = 0;
    locateTileSections(s);
    EXPECT_EQ(s.gSeekGraphicsEnd, 16384 - 41);

    StyleFileState gry;
    gry.header.is24 = false;
    gry.header.gry.anim_size = 0;
    locateTileSections(gry);
    EXPECT_EQ(gry.gSeekGraphicsStart, 53);
}

TEST(CommandLine, DebugSwitchIsAPlainSubstringTest) {
    EXPECT_TRUE(commandLineHasDebugSwitch({"x", "-dz"}));
    EXPECT_TRUE(commandLineHasDebugSwitch({"-d"}));
    EXPECT_FALSE(commandLineHasDebugSwitch({"STYLE001.G24"}));
    EXPECT_FALSE(commandLineHasDebugSwitch({}));
}
