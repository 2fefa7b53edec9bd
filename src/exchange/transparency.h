#pragma once
// Transparency of a sprite: palette index 0 is what the game leaves see-through. "View" shows the
// sprite as a two-colour mask; "Fix" moves the sprite's background index to 0.

#include "base/result.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace torquil {

struct PageArea;
struct Pages;
struct SpriteRec;

inline constexpr std::uint32_t kMaskShape = 0xFFFFFF;      // a nonzero index: white
inline constexpr std::uint32_t kMaskBackground = 0xB42828; // index 0: dark red (180, 40, 40)

// The mask picture: (width + 2) x (height + 2) 0x00RRGGBB pixels, row-major, the sprite at (1, 1)
// and a one-pixel background frame around it.
struct TransparencyMask {
    int width = 0, height = 0;
    std::vector<std::uint32_t> rgb;
    std::string title = "Transparency test...";
    std::string toolTip = "OK if you see a white shape in a red background.";
    [[nodiscard]] std::uint32_t at(int x, int y) const {
        return rgb[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                   static_cast<std::size_t>(x)];
    }
};

[[nodiscard]] TransparencyMask transparencyTest(const Pages& pages, const SpriteRec& sprite);

// What a fix did.
enum class TransparencyDone {
    Corrected,      // pixels and CLUT exchanged
    AlreadyCorrect, // the background already is index 0: nothing to change
};

// Why a fix changed nothing.
enum class TransparencyRefusal {
    NoSprite,     // nothing selected
    EightBit,     // refused: the 8-bit palette is fixed
    Undetermined, // the corner samples do not agree (or lie outside the page)
    Cancelled,    // the palette question was answered with Cancel
};

struct TransparencyFailure : Failure {
    TransparencyRefusal refusal = TransparencyRefusal::NoSprite;
};

using TransparencyResult = Result<TransparencyDone, TransparencyFailure>;

// What a fix did in one word, as the command line prints it: "corrected", "already correct",
// "no sprite", "refused", "undetermined" or "cancelled".
[[nodiscard]] const char* transparencyOutcomeWord(const TransparencyResult& fixed);

// The sprite's background index: its four corner samples (2 pixels in from each edge) when they
// agree; nothing when they do not or one lies outside the page.
[[nodiscard]] std::optional<std::uint8_t> backgroundIndex(const Pages& pages,
                                                          const SpriteRec& sprite);
// Exchanges `index` and index 0 in the sprite's pixels on its page; returns the area changed.
[[nodiscard]] PageArea swapWithZero(Pages& pages, const SpriteRec& sprite, std::uint8_t index);

} // namespace torquil
