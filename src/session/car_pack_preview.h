#pragma once
// What a GC3 car pack changes, told in a modder's words: the car records (by car name and ASN)
// and the fields in them, the car names, the sprites whose pixels change (by page and ASN), the
// CLUTs, the delta store and any other section of the style file, and the level it is for.
//
// The pack's runs are compared byte by byte with the files as they are before it is applied, so
// the bytes a run only carries along (runs grow to multiples of 8) are not counted as changes.
// Positions are placed through the tables of an open session of the same level: the session may
// have been loaded from the files before or after the pack; every section up to the sprite
// graphics keeps its place in both, and the end of the file moves with the delta store.

#include "exchange/gc3.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace torquil {

class StyleSession;

struct CarPackPreview {
    int packLevel = 0; // the pack's style number
    int openLevel = 0; // the level of the style the preview was made against
    std::string styleName;

    std::size_t styleRuns = 0, fxtRuns = 0;
    std::int64_t styleBytesChanged = 0, fxtBytesChanged = 0;
    std::int64_t styleLengthBefore = 0, styleLengthAfter = 0;
    std::int64_t fxtLengthBefore = 0, fxtLengthAfter = 0;
    // Bytes that a section's new length only moved (the same bytes, as many places later or
    // earlier as the file grew or shrank): counted apart, not as changes.
    std::int64_t styleBytesMoved = 0, fxtBytesMoved = 0;
    struct Moved {
        std::string section;
        std::int64_t bytes = 0;
    };
    std::vector<Moved> movedSections; // of the style file, in file order

    struct Car {
        int asn = 0; // absolute sprite number of the car
        int model = 0;
        std::string name;                 // after the pack
        std::vector<std::string> fields;  // record fields touched, in record order
        std::vector<std::string> changes; // each as the car editor names it: "Max Speed: 26 -> 30"
    };
    std::vector<Car> cars;

    struct Name {
        int model = 0;
        std::string before, after;
    };
    std::vector<Name> names;
    bool otherTexts = false; // ENGLISH.FXT changes outside the car names

    // A sprite's rectangle as a small picture: width x height colours 0xAARRGGBB, top row
    // first, colour 0 fully transparent. Empty when the sprite could not be drawn.
    struct Picture {
        int width = 0, height = 0;
        std::vector<std::uint32_t> argb;
        bool empty() const { return argb.empty(); }
    };
    struct Sprite {
        int page = 0;
        int asn = 0;     // 0: page pixels that no sprite owns
        std::string car; // the car's name when the sprite is a car's
        std::int64_t pixels = 0;
        Picture before, after; // through the CLUT each file holds (session/car_pack_pictures.h)
    };
    std::vector<Sprite> sprites; // by page, then ASN

    struct Clut {
        int clut = 0;          // physical CLUT number
        std::vector<int> asns; // sprites drawn through it
    };
    std::vector<Clut> cluts;

    bool deltaStore = false;
    std::vector<std::string> otherSections; // in file order: "header", "sprite info", ...

    bool forOpenLevel() const { return packLevel == openLevel; }
    bool changesNothing() const { return styleBytesChanged == 0 && fxtBytesChanged == 0; }
};

// The preview of `pack` taking the files from `*Before` to `*After` (as planCarPack gives them;
// `fxt*` empty when the level has no ENGLISH.FXT). Only bytes inside the pack's runs that differ
// are counted and placed.
[[nodiscard]] CarPackPreview previewCarPack(const Gc3Pack& pack, const StyleSession& session,
                                            const std::vector<std::uint8_t>& styleBefore,
                                            const std::vector<std::uint8_t>& fxtBefore,
                                            const std::vector<std::uint8_t>& styleAfter,
                                            const std::vector<std::uint8_t>& fxtAfter);

// Where bytes of a style file lie, in a modder's words: one line per car record (its name, ASN
// and the captions of its fields), sprite, CLUT or section. `positions` are 1-based in `style`,
// the bytes of the file at `stylePath`, whose names come from `fxt`.
[[nodiscard]] std::vector<std::string>
describeStylePositions(const std::filesystem::path& stylePath,
                       const std::vector<std::uint8_t>& style, const std::vector<std::uint8_t>& fxt,
                       const std::vector<std::int64_t>& positions);

// The preview as lines of text, as the command line prints it and the window lists it.
std::vector<std::string> carPackPreviewLines(const CarPackPreview& preview);

} // namespace torquil
