#pragma once
// The open style file: its name, kind, level, header and the 1-based positions of its sections,
// plus the dirty flags that the save sequence reads.

#include "style/style_header.h"

#include "base/file_stamp.h"
#include <cstdint>

#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

enum LoadOption : int { kLoadSprites = 0, kLoadTiles = 1 };

struct StyleFileState {
    std::filesystem::path path; // full path of the open file
    std::string gStyleFileName; // upper-cased file name, shown in the caption
    bool gIs24Bit = true;
    int gMapNumber = 0;
    int loadOption = kLoadSprites;
    bool loaded = false; // a load completed (the commands that need a file are on)

    StyleHeader header;
    std::int64_t fileLength = 0; // L, the file's real length when it was loaded
    FileStamp loadedStamp; // the file as loaded (or last saved), to notice changes behind our back
    // The file's bytes as the last save read or wrote them: the next save starts from them while
    // the file on disk still has `loadedStamp`, and compares its result with them.
    std::vector<std::uint8_t> content;

    // 1-based positions; the car and sprite info ones are 0 under the tiles option.
    std::int64_t gSeekCarInfo = 0, gSeekCarInfoEnd = 0;
    std::int64_t gSeekSpriteInfo = 0, gSeekSpriteInfoEnd = 0;
    std::int64_t gSeekGraphicsStart = 0, gSeekGraphicsEnd = 0;
    std::int64_t gSeekSpriteNumbers = 0; // L - sprite_numbers_size + 1

    bool gPagesChanged = false, gClutChanged = false, gDeltasChanged = false,
         gCarNamesChanged = false;
    // A sprite's place, size or delta count changed: the save writes the sprite info section
    // whole and moves the sections behind it.
    bool gLayoutChanged = false;
    // Absolute sprite numbers of cars changed in the editor; entry 0 is never used.
    std::vector<std::int16_t> gSaveCarInfo{0};

    void clearDirtyFlags() {
        gPagesChanged = gClutChanged = gDeltasChanged = gCarNamesChanged = gLayoutChanged = false;
        gSaveCarInfo.assign(1, 0);
    }
    [[nodiscard]] bool anyChange() const {
        return gPagesChanged || gClutChanged || gDeltasChanged || gCarNamesChanged ||
               gLayoutChanged || gSaveCarInfo.size() > 1;
    }
    // The folder of the style file (where ENGLISH.FXT and audio/ are looked for).
    [[nodiscard]] std::filesystem::path dataFolder() const { return path.parent_path(); }
};

// Section positions of the sprites option (all found backward from the real end L).
void locateSpriteSections(StyleFileState& style);
// Section positions of the tiles option (the tile pages begin right after the header).
void locateTileSections(StyleFileState& style);

} // namespace torquil
