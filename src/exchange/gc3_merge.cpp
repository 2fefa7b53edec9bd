// A GC3 pack merged into files edited since it was made, byte by byte with the unmodified bytes
// the pack keeps.

#include "exchange/gc3.h"
#include "exchange/gc3_moved.h"

#include "base/crc32.h"
#include "style/level_name.h"

#include <algorithm>

namespace torquil {

namespace {

void addConflict(std::vector<Gc3Conflict>& conflicts, bool fxt, std::int64_t position,
                 bool asBefore = false) {
    if (!conflicts.empty() && conflicts.back().fxt == fxt && !conflicts.back().moved &&
        conflicts.back().asBefore == asBefore && conflicts.back().last + 1 >= position) {
        conflicts.back().last = std::max(conflicts.back().last, position);
        return;
    }
    conflicts.push_back({fxt, position, position, false, asBefore});
}

// The style runs of a pack that does not change the file's length, followed into a file whose
// sections moved: each changed byte goes to the same place of the same section. A byte in a
// section whose size changed has lost its place and is a conflict. Conflicts are kept at the
// positions of the pack's unmodified file.
void mergeMoved(const std::vector<Gc3Record>& runs,
                const std::vector<std::vector<std::uint8_t>>& originals,
                const Gc3StyleLayouts& layouts, const std::vector<std::uint8_t>& current,
                std::vector<std::uint8_t>& out, std::vector<Gc3Conflict>& conflicts,
                std::vector<Gc3Record>& runsNow) {
    // The changed bytes at their places now, gathered into runs of neighbouring places.
    auto place = [&runsNow](std::int64_t q, std::uint8_t now) {
        if (runsNow.empty() || runsNow.back().position + 1 != q)
            runsNow.push_back({static_cast<std::int32_t>(q - 1), 0, {}});
        Gc3Record& r = runsNow.back();
        r.position = static_cast<std::int32_t>(q);
        ++r.length;
        r.data.push_back(now);
    };
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const Gc3Record& r = runs[i];
        const std::vector<std::uint8_t>& before = originals[i];
        for (std::size_t k = 0; k < before.size() && k < r.data.size(); ++k) {
            const std::uint8_t was = before[k], now = r.data[k];
            if (was == now) continue; // carried along by the run: the file's own byte stays
            const std::int64_t p = r.first() + static_cast<std::int64_t>(k);
            const int s = styleSectionAt(layouts.before, p);
            if (s < 0) {
                addConflict(conflicts, false, p, true);
                continue;
            }
            const StyleSection& from = layouts.before[static_cast<std::size_t>(s)];
            const StyleSection& to = layouts.now[static_cast<std::size_t>(s)];
            const std::int64_t q = to.first + (p - from.first);
            const auto at = static_cast<std::size_t>(q - 1);
            if (from.length != to.length || at >= current.size()) {
                addConflict(conflicts, false, p, true);
                continue;
            }
            place(q, now);
            if (current[at] == was)
                out[at] = now;
            else if (current[at] != now)
                addConflict(conflicts, false, p, true);
        }
    }
}

// One file of a pack merged into a file edited since it was made (see mergeGc3Pack). False when
// the pack's runs do not fit its own recorded length.
bool mergeFile(bool fxt, const std::vector<Gc3Record>& runs, std::int32_t resultLength,
               const std::vector<std::vector<std::uint8_t>>& originals, std::int32_t originalLength,
               const std::vector<std::uint8_t>& tail, const std::vector<std::uint8_t>& current,
               const std::optional<Gc3StyleLayouts>& layouts, std::vector<std::uint8_t>& out,
               std::vector<Gc3Conflict>& conflicts,
               std::optional<std::vector<Gc3Record>>& runsNow) {
    out = current;
    if (runs.empty() && resultLength == originalLength) return true; // the pack leaves it alone
    for (const Gc3Record& r : runs)
        if (r.position > resultLength) return false;
    const auto length = static_cast<std::int64_t>(current.size());
    // The pack leaves the sections' sizes alone and knows where they were: it follows them.
    if (layouts && layouts->moved() && resultLength == originalLength) {
        mergeMoved(runs, originals, *layouts, current, out, conflicts, runsNow.emplace());
        return true;
    }
    if (length != originalLength) {
        // Sections grew or shrank since: the runs' positions no longer mean the same bytes.
        conflicts.push_back({fxt, 1, length, true});
        return true;
    }
    if (resultLength < originalLength) {
        const auto cut = current.begin() + resultLength;
        if (!std::equal(tail.begin(), tail.end(), cut, current.end()))
            conflicts.push_back({fxt, resultLength + 1, length, false});
    }
    out.resize(static_cast<std::size_t>(resultLength), 0);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const Gc3Record& r = runs[i];
        const std::vector<std::uint8_t>& before = originals[i];
        for (std::int32_t k = 0; k < r.length; ++k) {
            const std::int64_t p = r.first() + k; // 1-based
            const std::uint8_t now = r.data[static_cast<std::size_t>(k)];
            const auto at = static_cast<std::size_t>(p - 1);
            if (static_cast<std::size_t>(k) >= before.size()) { // past the unmodified file's end
                out[at] = now;
                continue;
            }
            const std::uint8_t was = before[static_cast<std::size_t>(k)];
            if (was == now) continue; // carried along by the run: the file's own byte stays
            if (current[at] == was)
                out[at] = now;
            else if (current[at] != now)
                addConflict(conflicts, fxt, p);
        }
    }
    return true;
}

} // namespace

Gc3Merged mergeGc3Pack(const Gc3Pack& pack, const std::optional<Gc3Trailer>& trailer,
                       const std::optional<Gc3Originals>& originals, const Gc3FileBytes& style,
                       const Gc3FileBytes& fxt) {
    Gc3Merged m;
    auto refused = [&m](Gc3Refusal refusal, std::string message) {
        m.applied = gc3Refusal(refusal, std::move(message));
        m.style.clear();
        m.fxt.clear();
        return m;
    };
    const std::string both =
        style.path.filename().string() + " and " + fxt.path.filename().string();
    // Each file's checksum is taken once, for every test below.
    std::optional<std::uint32_t> styleCrc = style.crc, fxtCrc = fxt.crc;
    if (trailer) {
        styleCrc = style.checksum();
        fxtCrc = fxt.checksum();
    }
    const Gc3FileBytes styleFile{style.path, style.bytes, styleCrc};
    const Gc3FileBytes fxtFile{fxt.path, fxt.bytes, fxtCrc};
    const bool edited =
        trailer && (*styleCrc != trailer->originalStyle || *fxtCrc != trailer->originalFxt);
    if (!edited || !originals) {
        const Gc3Applied fit = checkGc3Fit(pack, trailer, styleFile, fxtFile, &m.style, &m.fxt);
        if (!fit) return refused(fit.error().refusal, fit.message());
    } else {
        if (*styleCrc == trailer->resultStyle && *fxtCrc == trailer->resultFxt)
            return refused(Gc3Refusal::AlreadyApplied,
                           "This GC3 car pack is already applied to " + style.path.string() +
                               " and " + fxt.path.string() + ": nothing was written.");
        struct File {
            bool fxt;
            const Gc3FileBytes& file;
            const std::vector<Gc3Record>& runs;
            std::int32_t resultLength, originalLength;
            std::uint32_t originalCrc, resultCrc;
            const std::vector<std::vector<std::uint8_t>>& before;
            const std::vector<std::uint8_t>& tail;
            std::vector<std::uint8_t>& out;
        };
        const File files[] = {{false, styleFile, pack.styleRecords, pack.header.StyleDataLOF,
                               originals->styleLength, trailer->originalStyle, trailer->resultStyle,
                               originals->style, originals->styleTail, m.style},
                              {true, fxtFile, pack.fxtRecords, pack.header.FXTDataLOF,
                               originals->fxtLength, trailer->originalFxt, trailer->resultFxt,
                               originals->fxt, originals->fxtTail, m.fxt}};
        const bool is24 = isG24FileName(style.path.filename().string());
        const std::optional<Gc3StyleLayouts> layouts =
            gc3StyleLayouts(*originals, style.bytes, is24);
        std::optional<std::vector<Gc3Record>> unusedRuns; // the text file has no sections
        for (const File& f : files) {
            const auto rebuilt = [&f] {
                Result<std::vector<std::uint8_t>> out =
                    rebuildFromRuns(f.file.bytes, f.runs, f.resultLength);
                if (!out) return false;
                f.out = std::move(out).value();
                return crc32(f.out) == f.resultCrc;
            };
            const bool ok =
                f.file.checksum() == f.originalCrc
                    ? rebuilt()
                    : mergeFile(f.fxt, f.runs, f.resultLength, f.before, f.originalLength, f.tail,
                                f.file.bytes, f.fxt ? std::nullopt : layouts, f.out, m.conflicts,
                                f.fxt ? unusedRuns : m.styleRunsNow);
            if (!ok)
                return refused(Gc3Refusal::Damaged,
                               "This GC3 car pack is damaged: its runs do not fit the length it "
                               "records for " +
                                   f.file.path.filename().string() + ". Nothing was written.");
        }
        if (!m.conflicts.empty()) {
            std::vector<Gc3Conflict> conflicts = std::move(m.conflicts);
            refused(Gc3Refusal::Conflicts, "This GC3 car pack changes bytes of " + both +
                                               " that were changed since it was made." + "\r" +
                                               "Nothing was written.");
            m.conflicts = std::move(conflicts);
            return m;
        }
    }
    m.styleChanged = m.style != style.bytes;
    m.fxtChanged = m.fxt != fxt.bytes;
    // A pack without a trailer cannot tell its own results: applied once, the files hold every
    // byte of it, and a second time would overwrite whatever was edited since.
    if (!m.styleChanged && !m.fxtChanged)
        return refused(Gc3Refusal::AlreadyApplied, "This GC3 car pack is already applied: " + both +
                                                       " already hold its changes." + "\r" +
                                                       "Nothing was written.");
    return m;
}

} // namespace torquil
