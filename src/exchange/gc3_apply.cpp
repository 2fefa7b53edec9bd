// A GC3 pack applied to the very files it was made against: the runs laid over the unmodified
// file, checked against the pack's recorded lengths and checksums.

#include "exchange/gc3.h"

#include "base/crc32.h"

#include <algorithm>

namespace torquil {

namespace {

enum class ApplyFault { None, TooShort, PastLength };

// The modified file rebuilt from the unmodified one and the runs, `length` bytes long. Bytes past
// the unmodified file's end exist only in the runs, so each of them must be covered by one.
ApplyFault rebuild(const std::vector<std::uint8_t>& original, const std::vector<Gc3Record>& runs,
                   std::int32_t length, std::vector<std::uint8_t>& out) {
    if (length < 0) return ApplyFault::PastLength;
    std::int64_t runBytes = 0;
    for (const Gc3Record& r : runs) {
        if (r.position > length) return ApplyFault::PastLength;
        runBytes += r.length;
    }
    const auto originalSize = static_cast<std::int64_t>(original.size());
    const std::int64_t grown = std::max<std::int64_t>(0, length - originalSize);
    if (grown > runBytes) return ApplyFault::TooShort;

    out.assign(original.begin(), original.begin() + std::min<std::int64_t>(originalSize, length));
    out.resize(static_cast<std::size_t>(length), 0);
    std::vector<bool> covered(static_cast<std::size_t>(grown), false);
    for (const Gc3Record& r : runs) {
        const std::int64_t first0 = r.first() - 1;
        std::copy(r.data.begin(), r.data.end(), out.begin() + first0);
        for (std::int64_t i = std::max(first0, originalSize); i < r.position; ++i)
            covered[static_cast<std::size_t>(i - originalSize)] = true;
    }
    if (std::find(covered.begin(), covered.end(), false) != covered.end())
        return ApplyFault::TooShort;
    return ApplyFault::None;
}

} // namespace

Result<std::vector<std::uint8_t>> rebuildFromRuns(const std::vector<std::uint8_t>& original,
                                                  const std::vector<Gc3Record>& runs,
                                                  std::int32_t length) {
    std::vector<std::uint8_t> out;
    switch (rebuild(original, runs, length, out)) {
    case ApplyFault::None:
        return out;
    case ApplyFault::TooShort:
        return fail("the file is too short for this GC3 car pack");
    case ApplyFault::PastLength:
        return fail("this GC3 car pack has a run past the recorded length");
    }
    return fail("this GC3 car pack could not be applied");
}

Gc3Applied checkGc3Fit(const Gc3Pack& pack, const std::optional<Gc3Trailer>& trailer,
                       const Gc3FileBytes& style, const Gc3FileBytes& fxt,
                       std::vector<std::uint8_t>* styleResult,
                       std::vector<std::uint8_t>* fxtResult) {
    const auto refused = gc3Refusal;
    // Torquil's packs say what they were made against and what they make.
    if (trailer) {
        const std::uint32_t styleCrc = style.checksum();
        const std::uint32_t fxtCrc = fxt.checksum();
        if (styleCrc == trailer->resultStyle && fxtCrc == trailer->resultFxt)
            return refused(Gc3Refusal::AlreadyApplied,
                           "This GC3 car pack is already applied to " + style.path.string() +
                               " and " + fxt.path.string() + ": nothing was written.");
        const bool styleFits = styleCrc == trailer->originalStyle;
        const bool fxtFits = fxtCrc == trailer->originalFxt;
        if (!styleFits || !fxtFits) {
            std::string which = !styleFits && !fxtFits
                                    ? style.path.string() + " and " + fxt.path.string()
                                : !styleFits ? style.path.string()
                                             : fxt.path.string();
            return refused(Gc3Refusal::FilesDiffer,
                           "This GC3 car pack was made against other files than " + which +
                               " (their contents differ from the files it was made from)." + "\r" +
                               "Nothing was written.");
        }
    }
    struct Target {
        const Gc3FileBytes& file;
        const std::vector<Gc3Record>& runs;
        std::int32_t length;
        std::vector<std::uint8_t> result;
    };
    Target targets[] = {{style, pack.styleRecords, pack.header.StyleDataLOF, {}},
                        {fxt, pack.fxtRecords, pack.header.FXTDataLOF, {}}};
    for (Target& t : targets) {
        switch (rebuild(t.file.bytes, t.runs, t.length, t.result)) {
        case ApplyFault::None:
            break;
        case ApplyFault::TooShort:
            return refused(Gc3Refusal::FilesDiffer, "The file " + t.file.path.string() +
                                                        " is too short for this GC3 car pack.");
        case ApplyFault::PastLength:
            return refused(Gc3Refusal::Damaged, "This GC3 car pack has a run past the recorded " +
                                                    std::string("length of ") +
                                                    t.file.path.string() + ".");
        }
    }
    if (trailer && (crc32(targets[0].result) != trailer->resultStyle ||
                    crc32(targets[1].result) != trailer->resultFxt))
        return refused(Gc3Refusal::Damaged,
                       "This GC3 car pack is damaged: applied, it does not give the files it was "
                       "made from. Nothing was written.");
    if (styleResult) *styleResult = std::move(targets[0].result);
    if (fxtResult) *fxtResult = std::move(targets[1].result);
    return {};
}

} // namespace torquil
