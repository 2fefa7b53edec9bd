#include "session/edit_step.h"

#include "cars/car_names.h"
#include "session/loaders.h"
#include "session/session_io.h"
#include "session/sprite_layout.h"
#include "session/style_session.h"
#include "style/page_io.h"

#include <algorithm>
#include <cstring>

namespace torquil {

namespace {

void addCar(std::vector<std::int16_t>& cars, std::int16_t asn) {
    if (asn != 0 && std::find(cars.begin(), cars.end(), asn) == cars.end()) cars.push_back(asn);
}

// The delta entry as the edits change it: its runs and size. ptr and entryPos are file places
// that only the delta save moves.
bool sameDeltaContent(const DeltaRec& a, const DeltaRec& b) {
    return a.size == b.size && a.runLine == b.runLine;
}

std::size_t deltaBytes(const std::optional<DeltaRec>& d) {
    if (!d) return 0;
    std::size_t n = sizeof(DeltaRec);
    for (const RunLine& r : d->runLine) n += sizeof(RunLine) + r.data.size();
    return n;
}

std::size_t carBytes(const CarEntry& e) {
    return sizeof(CarEntry) + e.doorList.size() * sizeof(DoorRec) + e.name.size();
}

// The smallest rectangle holding every byte of the page that differs; none when equal.
std::optional<PageArea> changedRect(const std::uint8_t* before, const std::uint8_t* after,
                                    int page) {
    int x0 = kPageSize, x1 = -1, y0 = kPageSize, y1 = -1;
    for (int y = 0; y < kPageSize; ++y) {
        const std::uint8_t* a = before + y * kPageSize;
        const std::uint8_t* b = after + y * kPageSize;
        if (std::memcmp(a, b, kPageSize) == 0) continue;
        int first = 0, last = kPageSize - 1;
        while (a[first] == b[first]) ++first;
        while (a[last] == b[last]) --last;
        x0 = std::min(x0, first);
        x1 = std::max(x1, last);
        y0 = std::min(y0, y);
        y1 = y;
    }
    if (y1 < 0) return std::nullopt;
    return PageArea{page, x0, y0, x1 - x0 + 1, y1 - y0 + 1};
}

std::vector<std::uint8_t> copyRect(const std::uint8_t* page, const PageArea& r) {
    std::vector<std::uint8_t> out(static_cast<std::size_t>(r.w) * r.h);
    for (int y = 0; y < r.h; ++y)
        std::memcpy(out.data() + static_cast<std::size_t>(y) * r.w,
                    page + (r.y + y) * kPageSize + r.x, static_cast<std::size_t>(r.w));
    return out;
}

} // namespace

PageArea spriteArea(const SpriteRec& s) {
    return {s.page, s.xo, s.yo, std::min<int>(s.W, kPageSize - s.xo),
            std::min<int>(s.H, kPageSize - s.yo)};
}

DirtyMarks DirtyMarks::of(const StyleFileState& style) {
    DirtyMarks m;
    m.pages = style.gPagesChanged;
    m.clut = style.gClutChanged;
    m.deltas = style.gDeltasChanged;
    m.names = style.gCarNamesChanged;
    m.layout = style.gLayoutChanged;
    for (std::size_t i = 1; i < style.gSaveCarInfo.size(); ++i)
        addCar(m.cars, style.gSaveCarInfo[i]);
    return m;
}

void DirtyMarks::applyTo(StyleFileState& style) const {
    style.gPagesChanged = pages;
    style.gClutChanged = clut;
    style.gDeltasChanged = deltas;
    style.gCarNamesChanged = names;
    style.gLayoutChanged = layout;
    style.gSaveCarInfo.assign(1, 0);
    style.gSaveCarInfo.insert(style.gSaveCarInfo.end(), cars.begin(), cars.end());
}

void DirtyMarks::add(const DirtyMarks& other) {
    pages = pages || other.pages;
    clut = clut || other.clut;
    deltas = deltas || other.deltas;
    names = names || other.names;
    layout = layout || other.layout;
    for (std::int16_t asn : other.cars) addCar(cars, asn);
}

bool EditStep::empty() const {
    return pages_.empty() && cluts_.empty() && cars_.empty() && names_.empty() && deltas_.empty() &&
           clutEntriesBefore_ == clutEntriesAfter_ && carSlotsBefore_ == carSlotsAfter_ &&
           deltaEntriesBefore_ == deltaEntriesAfter_ && deltaCountBefore_ == deltaCountAfter_ &&
           !layoutBefore_ && flagsBefore_ == flagsAfter_;
}

std::size_t EditStep::bytes() const {
    std::size_t n = sizeof(EditStep) + name_.size() + repaint_.size() * sizeof(PageArea);
    for (const PagePatch& p : pages_) n += sizeof(p) + p.before.size() + p.after.size();
    for (const ClutPatch& c : cluts_) n += sizeof(c) + c.before.size() + c.after.size();
    for (const CarPatch& c : cars_) n += carBytes(c.before) + carBytes(c.after);
    for (const NamePatch& p : names_)
        n += sizeof(p) + p.keyBefore.size() + p.keyAfter.size() + p.nameBefore.size() +
             p.nameAfter.size();
    for (const DeltaPatch& d : deltas_) n += sizeof(d) + deltaBytes(d.before) + deltaBytes(d.after);
    for (const auto& layout : {layoutBefore_, layoutAfter_})
        if (layout)
            for (const auto& list : layout->pageSprites)
                for (const SpriteRec& r : list) n += sizeof(r) + r.deltas.size() * 2;
    return n;
}

void EditStep::apply(StyleSession& s, bool after) const {
    for (const PagePatch& p : pages_) {
        const std::vector<std::uint8_t>& bytes = after ? p.after : p.before;
        for (int y = 0; y < p.rect.h; ++y)
            std::memcpy(s.pages.row(p.rect.page, p.rect.y + y) + p.rect.x,
                        bytes.data() + static_cast<std::size_t>(y) * p.rect.w,
                        static_cast<std::size_t>(p.rect.w));
    }

    const std::size_t clutEntries = after ? clutEntriesAfter_ : clutEntriesBefore_;
    if (s.colours.pal24.size() != clutEntries) s.colours.pal24.resize(clutEntries);
    for (const ClutPatch& c : cluts_) {
        const std::vector<std::uint8_t>& bytes = after ? c.after : c.before;
        if (bytes.empty()) continue; // the CLUT does not exist on this side
        for (int i = 0; i < 256; ++i)
            s.colours.entry(c.clut, i) = {bytes[static_cast<std::size_t>(i) * 3],
                                          bytes[static_cast<std::size_t>(i) * 3 + 1],
                                          bytes[static_cast<std::size_t>(i) * 3 + 2]};
    }

    s.cars.slots.resize(after ? carSlotsAfter_ : carSlotsBefore_);
    for (const CarPatch& c : cars_)
        if (static_cast<std::size_t>(c.asn) < s.cars.slots.size())
            s.cars.slots[static_cast<std::size_t>(c.asn)] = after ? c.after : c.before;

    for (const NamePatch& p : names_) {
        const auto m = static_cast<std::size_t>(p.model);
        s.names.keys[m] = after ? p.keyAfter : p.keyBefore;
        s.names.names[m] = after ? p.nameAfter : p.nameBefore;
    }

    auto& deltas = s.deltas.myDeltas;
    deltas.resize(after ? deltaEntriesAfter_ : deltaEntriesBefore_);
    for (const DeltaPatch& d : deltas_) {
        const std::optional<DeltaRec>& value = after ? d.after : d.before;
        if (!value || d.index >= deltas.size()) continue;
        DeltaRec& target = deltas[d.index];
        target.size = value->size;
        target.runLine = value->runLine;
    }
    s.deltas.deltaCount = after ? deltaCountAfter_ : deltaCountBefore_;

    if (const auto& layout = after ? layoutAfter_ : layoutBefore_) {
        const int selectedAsn = s.selectedSprite() ? s.selectedSprite()->ASN : 0;
        for (int page = 0; page < kMaxPages; ++page) {
            auto& list = s.sprites.pageSprites[static_cast<std::size_t>(page)];
            const auto& want = layout->pageSprites[static_cast<std::size_t>(page)];
            if (list == want) continue;
            list = want;
            rebuildMouseOver(s.sprites, page);
        }
        s.pages.gNumLinesLoaded = layout->linesLoaded;
        s.pages.gNumBlockLoaded = layout->blockLoaded;
        s.pages.highestPage = layout->highestPage;
        // The selection follows its sprite to its page and place in the list.
        if (selectedAsn != 0) {
            if (const auto at = findSprite(s.sprites, s.pages.highestPage, selectedAsn)) {
                s.selection.page = at->first;
                s.selection.sib = at->second;
            }
        }
    }

    if (!repaint_.empty()) {
        const auto painter = makePagePainter(s);
        for (const PageArea& r : repaint_) repaintRect(s, *painter, r.page, r.x, r.y, r.w, r.h);
    }
}

struct EditRecorder::Snapshot {
    DirtyMarks flags;
    std::vector<std::uint8_t> pixels;
    std::vector<std::array<std::uint8_t, 3>> pal24;
    std::vector<CarEntry> cars;
    CarNames names;
    std::vector<DeltaRec> deltas;
    std::int32_t deltaCount = 0;
    std::shared_ptr<const SpriteLayout> layout;
};

namespace {

std::shared_ptr<const SpriteLayout> layoutOf(const StyleSession& s) {
    auto layout = std::make_shared<SpriteLayout>();
    layout->pageSprites.assign(s.sprites.pageSprites.begin(), s.sprites.pageSprites.end());
    layout->linesLoaded = s.pages.gNumLinesLoaded;
    layout->blockLoaded = s.pages.gNumBlockLoaded;
    layout->highestPage = s.pages.highestPage;
    return layout;
}

bool sameLayout(const SpriteLayout& a, const SpriteLayout& b) {
    return a.pageSprites == b.pageSprites && a.linesLoaded == b.linesLoaded &&
           a.blockLoaded == b.blockLoaded && a.highestPage == b.highestPage;
}

} // namespace

EditRecorder::EditRecorder(const StyleSession& s, unsigned touches)
    : touches_(touches), before_(std::make_unique<Snapshot>()) {
    before_->flags = DirtyMarks::of(s.style);
    if (touches_ & kTouchPages) before_->pixels = s.pages.gPixels.toVector();
    if (touches_ & kTouchCluts) before_->pal24 = s.colours.pal24;
    if (touches_ & kTouchCars) before_->cars = s.cars.slots;
    if (touches_ & kTouchNames) before_->names = s.names;
    if (touches_ & kTouchDeltas) {
        before_->deltas = s.deltas.myDeltas;
        before_->deltaCount = s.deltas.deltaCount;
    }
    if (touches_ & kTouchSprites) before_->layout = layoutOf(s);
}

EditRecorder::~EditRecorder() = default;

void EditRecorder::touch(const PageArea& rect) {
    if (rect.page < 0 || rect.page >= kMaxPages || rect.w <= 0 || rect.h <= 0) return;
    if (std::find(touched_.begin(), touched_.end(), rect) == touched_.end())
        touched_.push_back(rect);
}

EditStep EditRecorder::finish(const StyleSession& s, std::string name) {
    EditStep step;
    step.name_ = std::move(name);
    step.flagsBefore_ = before_->flags;
    step.flagsAfter_ = DirtyMarks::of(s.style);
    const Snapshot& was = *before_;

    if (touches_ & kTouchPages) {
        for (int page = 0; page < kMaxPages; ++page) {
            const std::uint8_t* a = was.pixels.data() + static_cast<std::size_t>(page) * kPageBytes;
            const std::uint8_t* b = s.pages.row(page, 0);
            const auto rect = changedRect(a, b, page);
            if (!rect) continue;
            step.pages_.push_back({*rect, copyRect(a, *rect), copyRect(b, *rect)});
            touch(*rect);
        }
    }
    step.repaint_ = touched_;

    step.clutEntriesBefore_ = step.clutEntriesAfter_ = s.colours.pal24.size();
    if (touches_ & kTouchCluts) {
        step.clutEntriesBefore_ = was.pal24.size();
        const std::size_t cluts = std::max(was.pal24.size(), s.colours.pal24.size()) / 256;
        auto clutBytes = [](const std::vector<std::array<std::uint8_t, 3>>& pal, std::size_t c) {
            std::vector<std::uint8_t> out;
            if ((c + 1) * 256 > pal.size()) return out;
            out.reserve(768);
            for (std::size_t i = c * 256; i < (c + 1) * 256; ++i)
                out.insert(out.end(), pal[i].begin(), pal[i].end());
            return out;
        };
        // Compared in place; only a CLUT that differs is copied into the step.
        auto sameClut = [&](std::size_t c) {
            const auto& a = was.pal24;
            const auto& b = s.colours.pal24;
            const std::size_t end = (c + 1) * 256;
            if ((end > a.size()) != (end > b.size())) return false;
            if (end > a.size()) return true;
            return std::equal(a.begin() + static_cast<std::ptrdiff_t>(c * 256),
                              a.begin() + static_cast<std::ptrdiff_t>(end),
                              b.begin() + static_cast<std::ptrdiff_t>(c * 256));
        };
        for (std::size_t c = 0; c < cluts; ++c) {
            if (sameClut(c)) continue;
            step.cluts_.push_back(
                {static_cast<int>(c), clutBytes(was.pal24, c), clutBytes(s.colours.pal24, c)});
        }
    }

    step.carSlotsBefore_ = step.carSlotsAfter_ = s.cars.slots.size();
    if (touches_ & kTouchCars) {
        step.carSlotsBefore_ = was.cars.size();
        const std::size_t slots = std::max(was.cars.size(), s.cars.slots.size());
        const CarEntry none{};
        for (std::size_t asn = 0; asn < slots; ++asn) {
            const CarEntry& before = asn < was.cars.size() ? was.cars[asn] : none;
            const CarEntry& after = asn < s.cars.slots.size() ? s.cars.slots[asn] : none;
            if (before == after) continue;
            step.cars_.push_back({static_cast<int>(asn), before, after});
            // A name lives in ENGLISH.FXT; only the record itself is saved with the car.
            if (before.info != after.info || before.doorList != after.doorList)
                addCar(step.marks_.cars, static_cast<std::int16_t>(asn));
        }
    }

    if (touches_ & kTouchNames) {
        for (int m = 0; m < kCarNameCount; ++m) {
            const auto i = static_cast<std::size_t>(m);
            if (was.names.keys[i] == s.names.keys[i] && was.names.names[i] == s.names.names[i])
                continue;
            step.names_.push_back(
                {m, was.names.keys[i], s.names.keys[i], was.names.names[i], s.names.names[i]});
        }
    }

    step.deltaEntriesBefore_ = step.deltaEntriesAfter_ = s.deltas.myDeltas.size();
    step.deltaCountBefore_ = step.deltaCountAfter_ = s.deltas.deltaCount;
    if (touches_ & kTouchDeltas) {
        step.deltaEntriesBefore_ = was.deltas.size();
        step.deltaCountBefore_ = was.deltaCount;
        const auto& now = s.deltas.myDeltas;
        const std::size_t entries = std::max(was.deltas.size(), now.size());
        for (std::size_t i = 0; i < entries; ++i) {
            if (i < was.deltas.size() && i < now.size() && sameDeltaContent(was.deltas[i], now[i]))
                continue;
            std::optional<DeltaRec> before, after;
            if (i < was.deltas.size()) before = was.deltas[i];
            if (i < now.size()) after = now[i];
            step.deltas_.push_back({i, std::move(before), std::move(after)});
        }
    }

    if (touches_ & kTouchSprites) {
        auto now = layoutOf(s);
        if (!sameLayout(*was.layout, *now)) {
            step.layoutBefore_ = was.layout;
            step.layoutAfter_ = std::move(now);
        }
    }

    // What is left to save: the tables that changed, and whatever flag the edit set.
    const DirtyMarks& fb = step.flagsBefore_;
    const DirtyMarks& fa = step.flagsAfter_;
    step.marks_.pages = !step.pages_.empty() || (fa.pages && !fb.pages);
    step.marks_.clut = !step.cluts_.empty() || (fa.clut && !fb.clut);
    step.marks_.names = !step.names_.empty() || (fa.names && !fb.names);
    step.marks_.layout = step.layoutBefore_ != nullptr || (fa.layout && !fb.layout);
    step.marks_.deltas = !step.deltas_.empty() || step.deltaCountBefore_ != step.deltaCountAfter_ ||
                         (fa.deltas && !fb.deltas);
    for (std::int16_t asn : fa.cars)
        if (std::find(fb.cars.begin(), fb.cars.end(), asn) == fb.cars.end())
            addCar(step.marks_.cars, asn);
    before_.reset();
    return step;
}

} // namespace torquil
