#include "session/car_pack_preview.h"

#include "base/binary_file.h"
#include "cars/car_fields.h"
#include "cars/car_record.h"
#include "cars/car_record_fields.h"
#include "cars/fxt.h"
#include "session/car_pack_pictures.h"
#include "session/level_bytes_check.h"
#include "session/style_session.h"
#include "style/level_name.h"
#include "style/rounding.h"

#include <algorithm>
#include <map>
#include <set>

namespace torquil {

namespace {

// Section names that the preview reports in its own way.
constexpr const char* kCarInfo = "car info";
constexpr const char* kGraphics = "sprite graphics";
constexpr const char* kClut = "CLUT";
constexpr const char* kOutside = "bytes outside the style file's sections";
constexpr int kModelOffset = 107; // the car info record's `model` byte

struct Section {
    std::string name;
    std::int64_t first = 0, end = 0; // 1-based, end just past the section
};

// The sections of the style file after the pack, from the open session's header and places. The
// late sections are found backward from the end like the loaders find them; everything from the
// sprite graphics' end on moves with the file's length.
std::vector<Section> styleSections(const StyleFileState& st, std::int64_t lengthAfter) {
    const StyleHeader& h = st.header;
    const std::int64_t L = st.fileLength;
    const std::int64_t shift = lengthAfter - L;
    const std::int64_t tiles =
        roundUp16384(std::int64_t{h.side_size()} + h.lid_size() + h.aux_size());
    std::vector<Section> out;
    auto add = [&out](std::string name, std::int64_t first, std::int64_t length) {
        out.push_back({std::move(name), first, first + std::max<std::int64_t>(0, length)});
    };
    add("header", 1, h.headSize());
    add("tiles", h.headSize() + 1, tiles);
    add("tile animations", h.headSize() + 1 + tiles, h.anim_size());

    const std::int64_t late = std::int64_t{h.object_info_size()} + h.car_info_size() +
                              h.sprite_info_size() + h.sprite_graphics_size() +
                              h.sprite_numbers_size();
    std::int64_t at = 0;
    if (h.is24) {
        add(kClut, h.headSize() + 1 + tiles + h.anim_size(), roundUp65536(h.g24.clut_size));
        at = L - (h.g24.palette_index_size + late) + 1;
        add("palette index", at, h.g24.palette_index_size);
        at += h.g24.palette_index_size;
    } else {
        at = L + 1 -
             (std::int64_t{h.gry.palette_size} + h.gry.remap_size + h.gry.remap_index_size + late);
        add("8-bit palette", at, h.gry.palette_size);
        at += h.gry.palette_size;
        add("remaps", at, h.gry.remap_size);
        at += h.gry.remap_size;
        add("remap index", at, h.gry.remap_index_size);
        at += h.gry.remap_index_size;
    }
    add("object info", at, h.object_info_size());
    at += h.object_info_size();
    add(kCarInfo, at, h.car_info_size());
    at += h.car_info_size();
    add("sprite info", at, h.sprite_info_size());
    at += h.sprite_info_size();
    add(kGraphics, at, h.sprite_graphics_size() + shift);
    at += h.sprite_graphics_size() + shift;
    add("sprite numbers", at, lengthAfter + 1 - at);
    return out;
}

// The section of a position; the late sections win where a damaged header lets them overlap.
const Section* sectionAt(const std::vector<Section>& sections, std::int64_t position) {
    for (auto it = sections.rbegin(); it != sections.rend(); ++it)
        if (position >= it->first && position < it->end) return &*it;
    return nullptr;
}

// 1-based positions at which `after` differs from `before` inside the runs.
std::vector<std::int64_t> changedPositions(const std::vector<Gc3Record>& runs,
                                           const std::vector<std::uint8_t>& before,
                                           const std::vector<std::uint8_t>& after) {
    std::vector<std::int64_t> out;
    for (const Gc3Record& r : runs)
        for (std::int64_t p = r.first(); p <= r.position; ++p) {
            const auto i = static_cast<std::size_t>(p - 1);
            if (i >= after.size()) break;
            if (i >= before.size() || before[i] != after[i]) out.push_back(p);
        }
    return out;
}

// Splits changed positions into the changed and those that only moved. Only a file that grew or
// shrank has moved bytes: after an insertion or a cut, the bytes that follow are the same bytes
// a few places later or earlier. Walking the changed positions in order, a position is moved when
// the byte `shift` places back in the file before is the same; where that stops, the shift that
// makes the next 16 bytes the same (up to 64 places either way) is taken, if there is one.
std::vector<std::int64_t> withoutMoved(const std::vector<std::int64_t>& positions,
                                       const std::vector<std::uint8_t>& before,
                                       const std::vector<std::uint8_t>& after,
                                       std::vector<std::int64_t>& moved) {
    if (before.size() == after.size()) return positions;
    constexpr int kStretch = 16, kFarthest = 64;
    const auto beforeSize = static_cast<std::int64_t>(before.size());
    const auto afterSize = static_cast<std::int64_t>(after.size());
    auto same = [&](std::int64_t p, std::int64_t shift) { // p 1-based in the file after
        const std::int64_t was = p - shift;
        return was >= 1 && was <= beforeSize && p <= afterSize &&
               before[static_cast<std::size_t>(was - 1)] == after[static_cast<std::size_t>(p - 1)];
    };
    auto stretch = [&](std::int64_t p, std::int64_t shift) {
        for (int k = 0; k < kStretch; ++k)
            if (!same(p + k, shift)) return false;
        return true;
    };
    std::vector<std::int64_t> changed;
    std::int64_t shift = 0;
    for (std::int64_t p : positions) {
        if (shift == 0 || !same(p, shift)) {
            for (std::int64_t d = 1; d <= kFarthest; ++d) {
                if (stretch(p, d)) {
                    shift = d;
                    break;
                }
                if (stretch(p, -d)) {
                    shift = -d;
                    break;
                }
            }
        }
        (shift != 0 && same(p, shift) ? moved : changed).push_back(p);
    }
    return changed;
}

// The decoded entries of a text file that are not car names, in order. Lines too short for an
// entry or without a key (the end marker, which every save writes anew) are no texts.
std::vector<std::string> otherTextLines(const std::vector<std::uint8_t>& text) {
    std::vector<std::string> lines;
    std::string line;
    auto take = [&lines](const std::string& l) {
        const bool entry =
            l.size() >= 4 && l.find('[') != std::string::npos && l.find(']') != std::string::npos;
        if (entry && l.rfind("[car", 0) != 0) lines.push_back(l);
    };
    for (std::uint8_t b : text) {
        if (b == 10) {
            take(line);
            line.clear();
        } else if (b != 13) {
            line.push_back(static_cast<char>(b));
        }
    }
    take(line);
    return lines;
}

struct CarSpan {
    std::int64_t first = 0, end = 0;
    int asn = 0;
};

// The record of a car as the bytes at its place hold it (doors as many as the open level has).
CarEntry recordAt(const std::vector<std::uint8_t>& bytes, const CarEntry& car) {
    CarEntry out = car;
    const auto at = static_cast<std::size_t>(car.fileSeek - 1);
    if (car.fileSeek < 1 || at + CarInfo::kFixedSize > bytes.size()) return out;
    CarFixedBytes fixed{};
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), fixed.size(), fixed.begin());
    out.info = decodeCarFixed(fixed);
    for (std::size_t d = 0; d < out.doorList.size(); ++d) {
        const std::size_t from = at + CarInfo::kFixedSize + d * CarInfo::kDoorSize;
        if (from + CarInfo::kDoorSize > bytes.size()) break;
        DoorBytes door{};
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(from), door.size(), door.begin());
        out.doorList[d] = decodeDoor(door);
    }
    return out;
}

// The values of some editor boxes joined with "/", at a remap or door.
std::string boxValues(const CarEntry& car, std::initializer_list<int> boxes,
                      const FieldCursor& at = {}) {
    std::string out;
    for (int box : boxes) out += (out.empty() ? "" : "/") + fieldText(car, box, at);
    return out;
}

// A record field ("max_speed", "remap24[3]", "door 1", "value[2]") as the car editor names it.
std::string fieldLabel(const std::string& field) {
    const auto bracket = field.find('[');
    const std::string base = field.substr(0, bracket);
    const std::string element =
        bracket == std::string::npos ? "" : field.substr(bracket + 1, field.size() - bracket - 2);
    if (base == "remap24") return "Remap " + element + " Hue/Lightness/Saturation";
    if (base == "remap8") return "Remap " + element + " Palette Index";
    if (base == "value")
        return "Value (crane " + std::to_string(std::atoi(element.c_str()) + 1) + ")";
    if (field.rfind("door ", 0) == 0) return "Door " + field.substr(5) + " RPX/RPY/Object/Delta";
    if (const CarField* box = carFieldByName(base)) return std::string(box->caption);
    return field;
}

// A record field with its value before and after: "Max Speed: 26 -> 30".
std::string fieldChange(const std::string& field, const CarEntry& before, const CarEntry& after) {
    const auto bracket = field.find('[');
    const std::string base = field.substr(0, bracket);
    const int element = bracket == std::string::npos ? 0 : std::atoi(field.c_str() + bracket + 1);
    std::string was, now;
    if (base == "remap24" || base == "remap8") {
        const FieldCursor at{element, 0};
        const auto boxes = base == "remap8" ? std::initializer_list<int>{41}
                                            : std::initializer_list<int>{38, 39, 40};
        was = boxValues(before, boxes, at);
        now = boxValues(after, boxes, at);
    } else if (base == "value") {
        const auto i = static_cast<std::size_t>(element) % 4;
        was = std::to_string(before.info.value[i]);
        now = std::to_string(after.info.value[i]);
    } else if (field.rfind("door ", 0) == 0) {
        const FieldCursor at{0, std::atoi(field.c_str() + 5) - 1};
        was = boxValues(before, {43, 44, 45, 46}, at);
        now = boxValues(after, {43, 44, 45, 46}, at);
    } else if (const CarField* box = carFieldByName(base); box && box->index < kValueBox) {
        was = fieldText(before, box->index);
        now = fieldText(after, box->index);
    } else {
        return field + " changed";
    }
    return fieldLabel(field) + ": " + was + " -> " + now;
}

class StyleClassifier {
public:
    StyleClassifier(const StyleSession& s, const std::vector<std::uint8_t>& after,
                    const CarNames& names, CarPackPreview& out,
                    const std::vector<std::uint8_t>* before = nullptr)
        : s_(s), after_(after), before_(before), names_(names), out_(out),
          sections_(styleSections(s.style, static_cast<std::int64_t>(after.size()))) {
        for (int asn = 1; asn < static_cast<int>(s.cars.slots.size()); ++asn) {
            const CarEntry& car = s.cars.slots[static_cast<std::size_t>(asn)];
            if (!car.inUse || car.fileSeek < 1) continue;
            cars_.push_back(
                {car.fileSeek,
                 car.fileSeek + CarInfo::kFixedSize +
                     CarInfo::kDoorSize * static_cast<std::int64_t>(car.doorList.size()),
                 asn});
        }
        std::sort(cars_.begin(), cars_.end(),
                  [](const CarSpan& a, const CarSpan& b) { return a.first < b.first; });
    }

    void take(std::int64_t p) {
        const Section* section = sectionAt(sections_, p);
        if (!section) return other(kOutside, 1ll << 62);
        if (section->name == kCarInfo && carAt(p)) return;
        if (section->name == kGraphics) return graphics(p, *section);
        if (section->name == kClut && s_.style.header.is24) {
            const std::int64_t o = p - section->first;
            cluts_.insert(static_cast<int>(64 * (o / 65536) + (o % 256) / 4));
            return;
        }
        other(section->name, section->first);
    }

    // The section of a position of the file after the pack, by name.
    std::string sectionOf(std::int64_t p) const {
        const Section* section = sectionAt(sections_, p);
        return section ? section->name : kOutside;
    }

    void finish() {
        for (const auto& [asn, fields] : carFields_) {
            CarPackPreview::Car car;
            car.asn = asn;
            const CarEntry& entry = s_.cars.slots[static_cast<std::size_t>(asn)];
            car.model = entry.info.model;
            const auto modelAt = static_cast<std::size_t>(entry.fileSeek - 1 + kModelOffset);
            if (modelAt < after_.size()) car.model = after_[modelAt]; // the pack may change it
            car.name = names_.nameOf(car.model);
            car.fields = fields;
            if (before_) {
                const CarEntry was = recordAt(*before_, entry), now = recordAt(after_, entry);
                for (const std::string& field : fields)
                    car.changes.push_back(fieldChange(field, was, now));
            }
            out_.cars.push_back(std::move(car));
        }
        for (const auto& [key, pixels] : pixels_) {
            const auto [page, asn] = key;
            CarPackPreview::Sprite sprite{page, asn, {}, pixels, {}, {}};
            if (const CarEntry* car = carOfSprite(asn)) sprite.car = names_.nameOf(car->info.model);
            out_.sprites.push_back(std::move(sprite));
        }
        for (int clut : cluts_) {
            CarPackPreview::Clut c{clut, {}};
            std::set<int> asns;
            for (const auto& page : s_.sprites.pageSprites)
                for (std::size_t i = 1; i < page.size(); ++i)
                    if (page[i].clut == clut && page[i].kind.empty()) asns.insert(page[i].ASN);
            c.asns.assign(asns.begin(), asns.end());
            out_.cluts.push_back(std::move(c));
        }
        for (const auto& [first, name] : others_) out_.otherSections.push_back(name);
    }

private:
    bool carAt(std::int64_t p) {
        auto it = std::upper_bound(cars_.begin(), cars_.end(), p,
                                   [](std::int64_t v, const CarSpan& c) { return v < c.first; });
        if (it == cars_.begin()) return false;
        --it;
        if (p >= it->end) return false;
        std::vector<std::string>& fields = carFields_[it->asn];
        const std::string field = carRecordFieldAt(static_cast<int>(p - it->first));
        if (std::find(fields.begin(), fields.end(), field) == fields.end()) fields.push_back(field);
        return true;
    }

    void graphics(std::int64_t p, const Section& section) {
        const bool sprites = s_.style.loadOption == kLoadSprites;
        const bool inStore = s_.deltas.deltaStart > 0 && p >= s_.deltas.deltaStart;
        const std::int64_t o = p - section.first;
        const auto page = static_cast<int>(o / kPageBytes);
        if (!sprites || inStore || page >= kMaxPages || page > s_.pages.gNumBlockLoaded) {
            if (sprites)
                out_.deltaStore = true;
            else
                other(kGraphics, section.first);
            return;
        }
        const auto x = static_cast<int>(o % kPageSize);
        const auto y = static_cast<int>((o % kPageBytes) / kPageSize);
        const int sib = s_.sprites.over(page, x, y);
        int asn = 0;
        if (sib > 0 && sib <= s_.sprites.pageCount(page))
            asn = s_.sprites
                      .pageSprites[static_cast<std::size_t>(page)][static_cast<std::size_t>(sib)]
                      .ASN;
        ++pixels_[{page, asn}];
    }

    const CarEntry* carOfSprite(int asn) const {
        if (asn <= 0 || asn >= static_cast<int>(s_.cars.slots.size())) return nullptr;
        const CarEntry& car = s_.cars.slots[static_cast<std::size_t>(asn)];
        return car.inUse ? &car : nullptr;
    }

    void other(const std::string& name, std::int64_t first) { others_.emplace(first, name); }

    const StyleSession& s_;
    const std::vector<std::uint8_t>& after_;
    const std::vector<std::uint8_t>* before_;
    const CarNames& names_;
    CarPackPreview& out_;
    std::vector<Section> sections_;
    std::vector<CarSpan> cars_;
    std::map<int, std::vector<std::string>> carFields_;
    std::map<std::pair<int, int>, std::int64_t> pixels_;
    std::set<int> cluts_;
    std::set<std::pair<std::int64_t, std::string>> others_;
};

// Fills the car names and other texts that change; returns the names of the text file after it.
CarNames previewNames(const std::vector<std::uint8_t>& before,
                      const std::vector<std::uint8_t>& after, CarPackPreview& out) {
    CarNames namesBefore, namesAfter;
    const auto textBefore = decodeFxtBytes(before, &namesBefore);
    const auto textAfter = decodeFxtBytes(after, &namesAfter);
    for (int m = 0; m < kCarNameCount; ++m) {
        const auto i = static_cast<std::size_t>(m);
        if (namesBefore.names[i] != namesAfter.names[i] ||
            namesBefore.keys[i] != namesAfter.keys[i])
            out.names.push_back({m, namesBefore.names[i], namesAfter.names[i]});
    }
    out.otherTexts = otherTextLines(textBefore) != otherTextLines(textAfter);
    return namesAfter;
}

std::string joined(const std::vector<std::string>& parts, const char* separator = ", ") {
    std::string out;
    for (const std::string& p : parts) out += (out.empty() ? "" : separator) + p;
    return out;
}

std::string counted(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

std::string levelText(int level) {
    return std::to_string(level) + " (" + mapName(level) + ")";
}

} // namespace

CarPackPreview previewCarPack(const Gc3Pack& pack, const StyleSession& session,
                              const std::vector<std::uint8_t>& styleBefore,
                              const std::vector<std::uint8_t>& fxtBefore,
                              const std::vector<std::uint8_t>& styleAfter,
                              const std::vector<std::uint8_t>& fxtAfter) {
    CarPackPreview out;
    out.packLevel = pack.header.stylenum;
    out.openLevel = session.style.gMapNumber;
    out.styleName = session.style.gStyleFileName;
    out.styleRuns = pack.styleRecords.size();
    out.fxtRuns = pack.fxtRecords.size();
    out.styleLengthBefore = static_cast<std::int64_t>(styleBefore.size());
    out.styleLengthAfter = static_cast<std::int64_t>(styleAfter.size());
    out.fxtLengthBefore = static_cast<std::int64_t>(fxtBefore.size());
    out.fxtLengthAfter = static_cast<std::int64_t>(fxtAfter.size());

    std::vector<std::int64_t> fxtMoved, styleMoved;
    const auto fxtChanged = withoutMoved(changedPositions(pack.fxtRecords, fxtBefore, fxtAfter),
                                         fxtBefore, fxtAfter, fxtMoved);
    out.fxtBytesChanged = static_cast<std::int64_t>(fxtChanged.size());
    out.fxtBytesMoved = static_cast<std::int64_t>(fxtMoved.size());
    // Cars are named as the text file names them after the pack, else as the open level does.
    CarNames namesAfter = session.names;
    if (!fxtChanged.empty() || fxtBefore.size() != fxtAfter.size()) {
        const CarNames decoded = previewNames(fxtBefore, fxtAfter, out);
        for (std::size_t m = 0; m < decoded.keys.size(); ++m)
            if (!decoded.keys[m].empty()) namesAfter.names[m] = decoded.names[m];
    }

    const auto styleChanged =
        withoutMoved(changedPositions(pack.styleRecords, styleBefore, styleAfter), styleBefore,
                     styleAfter, styleMoved);
    out.styleBytesChanged = static_cast<std::int64_t>(styleChanged.size());
    out.styleBytesMoved = static_cast<std::int64_t>(styleMoved.size());
    StyleClassifier classify(session, styleAfter, namesAfter, out, &styleBefore);
    for (std::int64_t p : styleChanged) classify.take(p);
    classify.finish();
    for (std::int64_t p : styleMoved) {
        const std::string section = classify.sectionOf(p);
        if (out.movedSections.empty() || out.movedSections.back().section != section)
            out.movedSections.push_back({section, 0});
        ++out.movedSections.back().bytes;
    }
    addSpritePictures(out, session, styleBefore, styleAfter);
    return out;
}

std::vector<std::string> describeStylePositions(const std::filesystem::path& stylePath,
                                                const std::vector<std::uint8_t>& style,
                                                const std::vector<std::uint8_t>& fxt,
                                                const std::vector<std::int64_t>& positions) {
    const auto loaded = loadLevelBytes(stylePath, style, fxt);
    std::vector<std::string> out;
    if (!loaded) {
        out.push_back(stylePath.filename().string() + ": " + std::to_string(positions.size()) +
                      " bytes (the file does not open: " + loaded.message() + ")");
        return out;
    }
    const auto& session = *loaded;
    CarPackPreview places;
    StyleClassifier classify(*session, style, session->names, places);
    for (std::int64_t p : positions) classify.take(p);
    classify.finish();
    for (const auto& car : places.cars) {
        std::vector<std::string> labels;
        for (const std::string& field : car.fields) labels.push_back(fieldLabel(field));
        out.push_back(car.name + " (ASN " + std::to_string(car.asn) + "): " + joined(labels));
    }
    for (const auto& s : places.sprites)
        out.push_back(s.asn > 0 ? "sprite " + std::to_string(s.asn) +
                                      (s.car.empty() ? "" : " (" + s.car + ")") + " on page " +
                                      std::to_string(s.page)
                                : "pixels outside any sprite on page " + std::to_string(s.page));
    for (const auto& c : places.cluts) out.push_back("CLUT " + std::to_string(c.clut));
    if (places.deltaStore) out.push_back("the delta store");
    for (const auto& section : places.otherSections) out.push_back("the " + section);
    return out;
}

std::vector<std::string> carPackPreviewLines(const CarPackPreview& p) {
    std::vector<std::string> lines;
    lines.push_back("Car pack for level " + levelText(p.packLevel));
    if (!p.forOpenLevel())
        lines.push_back("Not for " + p.styleName + ", which is level " + levelText(p.openLevel));
    lines.push_back("Style file: " + counted(p.styleRuns, "run", "runs") + ", " +
                    counted(static_cast<std::size_t>(p.styleBytesChanged), "byte", "bytes") +
                    " changed" +
                    (p.styleBytesMoved > 0 ? ", " + std::to_string(p.styleBytesMoved) + " moved"
                                           : std::string{}) +
                    (p.styleLengthAfter != p.styleLengthBefore
                         ? ", length " + std::to_string(p.styleLengthBefore) + " -> " +
                               std::to_string(p.styleLengthAfter)
                         : std::string{}));
    lines.push_back("ENGLISH.FXT: " + counted(p.fxtRuns, "run", "runs") + ", " +
                    counted(static_cast<std::size_t>(p.fxtBytesChanged), "byte", "bytes") +
                    " changed" +
                    (p.fxtBytesMoved > 0 ? ", " + std::to_string(p.fxtBytesMoved) +
                                               " moved (texts after a name of another length)"
                                         : std::string{}));
    if (p.changesNothing()) lines.push_back("Changes nothing in these files");
    if (!p.cars.empty()) {
        lines.push_back("Car records:");
        // One line per car, then one per changed field as the car editor names it.
        for (const auto& car : p.cars) {
            lines.push_back("  " + car.name + " (model " + std::to_string(car.model) + ", ASN " +
                            std::to_string(car.asn) + ")");
            for (const std::string& change : car.changes) lines.push_back("    " + change);
        }
    }
    if (!p.names.empty()) {
        lines.push_back("Car names:");
        for (const auto& n : p.names)
            // A car is named by its name, as the modder knows it, with its model number.
            lines.push_back("  " + (n.after.empty() ? n.before : n.after) + " (model " +
                            std::to_string(n.model) + "): \"" + n.before + "\" -> \"" + n.after +
                            "\"");
    }
    if (p.otherTexts) lines.push_back("Other texts of ENGLISH.FXT changed");
    // Sprites: the pixels that change, and under each sprite the CLUTs it is drawn through
    // that change (a CLUT shared by several sprites is listed under each).
    std::map<int, std::vector<int>> clutsOf; // ASN -> changed CLUTs
    for (const auto& c : p.cluts)
        for (int asn : c.asns) clutsOf[asn].push_back(c.clut);
    auto clutLine = [](const std::vector<int>& cluts) {
        std::vector<std::string> numbers;
        for (int clut : cluts) numbers.push_back(std::to_string(clut));
        return std::string(cluts.size() == 1 ? "    colours changed: CLUT "
                                             : "    colours changed: CLUTs ") +
               joined(numbers);
    };
    if (!p.sprites.empty() || !clutsOf.empty()) lines.push_back("Sprites:");
    std::set<int> told;
    for (const auto& s : p.sprites) {
        const std::string who =
            s.asn > 0 ? "ASN " + std::to_string(s.asn) + (s.car.empty() ? "" : " (" + s.car + ")")
                      : "outside any sprite";
        lines.push_back("  page " + std::to_string(s.page) + ", " + who + ": " +
                        counted(static_cast<std::size_t>(s.pixels), "pixel", "pixels"));
        if (const auto it = clutsOf.find(s.asn); it != clutsOf.end() && told.insert(s.asn).second)
            lines.push_back(clutLine(it->second));
    }
    for (const auto& [asn, cluts] : clutsOf) {
        if (told.count(asn)) continue;
        lines.push_back("  ASN " + std::to_string(asn) + ": no pixel changed");
        lines.push_back(clutLine(cluts));
    }
    std::vector<std::string> unused;
    for (const auto& c : p.cluts)
        if (c.asns.empty()) unused.push_back(std::to_string(c.clut));
    if (!unused.empty())
        lines.push_back(std::string(unused.size() == 1 ? "CLUT " : "CLUTs ") + joined(unused) +
                        " changed: drawn through by no sprite directly (a car's colour remap or a "
                        "CLUT the level does not use)");
    if (p.deltaStore) lines.push_back("Delta store changed");
    if (!p.movedSections.empty()) {
        lines.push_back("Moved, unchanged (a section before them changed length):");
        for (const auto& m : p.movedSections)
            lines.push_back("  " + m.section + ": " +
                            counted(static_cast<std::size_t>(m.bytes), "byte", "bytes"));
    }
    if (!p.otherSections.empty())
        lines.push_back("Other sections changed: " + joined(p.otherSections));
    return lines;
}

} // namespace torquil
