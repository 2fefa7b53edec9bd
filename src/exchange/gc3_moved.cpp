#include "exchange/gc3_moved.h"

#include <algorithm>

namespace torquil {

namespace {

// The layout of a file from its header bytes; nullopt when they do not describe the file.
std::optional<std::vector<StyleSection>> layoutOf(const std::vector<std::uint8_t>& head,
                                                  std::int64_t length, bool is24) {
    const int size = is24 ? G24Header::kSize : GRYHeader::kSize;
    if (head.size() < static_cast<std::size_t>(size)) return std::nullopt;
    const StyleHeader header = parseStyleHeader(head.data(), is24);
    if (!headerFitsFile(header, length)) return std::nullopt;
    return styleSectionMap(header, length);
}

int sectionNamed(const std::vector<StyleSection>& sections, const char* name) {
    for (std::size_t i = 0; i < sections.size(); ++i)
        if (std::string_view(sections[i].name) == name) return static_cast<int>(i);
    return -1;
}

} // namespace

bool Gc3StyleLayouts::moved() const {
    for (std::size_t i = 0; i < before.size() && i < now.size(); ++i)
        if (before[i].first != now[i].first || before[i].length != now[i].length) return true;
    return before.size() != now.size();
}

std::optional<Gc3StyleLayouts> gc3StyleLayouts(const Gc3Originals& originals,
                                               const std::vector<std::uint8_t>& now, bool is24) {
    auto before = layoutOf(originals.styleHead, originals.styleLength, is24);
    auto current = layoutOf(now, static_cast<std::int64_t>(now.size()), is24);
    if (!before || !current || before->size() != current->size()) return std::nullopt;
    return Gc3StyleLayouts{std::move(*before), std::move(*current)};
}

std::vector<std::uint8_t> relayStyleFile(const Gc3Originals& originals,
                                         const std::vector<std::uint8_t>& now, bool is24) {
    const auto layouts = gc3StyleLayouts(originals, now, is24);
    if (!layouts) return {};
    std::vector<std::uint8_t> out(static_cast<std::size_t>(originals.styleLength), 0);
    for (std::size_t i = 0; i < layouts->before.size(); ++i) {
        const StyleSection& was = layouts->before[i];
        const StyleSection& is = layouts->now[i];
        const std::int64_t count = std::min(was.length, is.length);
        std::copy_n(now.begin() + (is.first - 1), count, out.begin() + (was.first - 1));
    }
    std::copy(originals.styleHead.begin(), originals.styleHead.end(), out.begin());
    const int info = sectionNamed(layouts->before, "sprite info");
    if (info >= 0 && layouts->before[static_cast<std::size_t>(info)].length ==
                         static_cast<std::int64_t>(originals.styleSpriteInfo.size()))
        std::copy(originals.styleSpriteInfo.begin(), originals.styleSpriteInfo.end(),
                  out.begin() + (layouts->before[static_cast<std::size_t>(info)].first - 1));
    return out;
}

} // namespace torquil
