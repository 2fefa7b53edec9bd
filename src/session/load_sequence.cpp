#include "session/load_sequence.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/cause_advice.h"
#include "base/stamped_content.h"
#include "platform/platform.h"
#include "session/loaders.h"
#include "session/save_sequence.h"
#include "session/session_io.h"
#include "style/level_name.h"
#include "style/page_io.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>

namespace torquil {

void prepareStyle(StyleFileState& style, const std::filesystem::path& path, int loadOption) {
    style.path = path;
    style.gStyleFileName = toUpperAscii(path.filename().string());
    style.gMapNumber = mapNumberFromFileName(style.gStyleFileName);
    style.gIs24Bit = isG24FileName(path.string());
    style.header.is24 = style.gIs24Bit;
    style.loadOption = loadOption;
}

std::string loadFailureMessage(const std::string& step, const std::filesystem::path& path) {
    return "ERROR: " + step + "\r" +
           "There was a problem during the loading of the KRB STYLE file." + "\r" +
           "Please check that you are not editing the file while KRB is trying to use it!" + "\r" +
           "The file may have become corrupt, you may have to reinstall the " + path.string() +
           " from the KRB CD.";
}

std::string notStyleFileLine(const std::filesystem::path& path) {
    return path.filename().string() +
           " is not a style file: its header does not describe a file of this length.";
}

namespace {

// Runs one loader under its step text; a loader not built into this program is skipped.
bool runStep(StyleSession& s, BinaryFile& file, Platform& platform, const char* step,
             const SectionLoader& loader) {
    s.stepText = step;
    if (!loader) return true;
    return loader(s, file, platform);
}

void appendHeaderDetails(const StyleSession& s, Platform& platform) {
    const StyleHeader& h = s.style.header;
    platform.detail("version_code:" + std::to_string(h.version_code()));
    platform.detail("LOF:" + std::to_string(s.style.fileLength));
    platform.detail("head_size:" + std::to_string(h.headSize()));
    for (const auto& [label, value] : h.sizeFields())
        platform.detail(label + std::to_string(value));
}

// Passes rows on to the session's painter and notes which rows of which pages it painted, so
// that only the rest of the page image has to be cleared afterwards.
class RowRecordingPainter : public PagePainter {
public:
    explicit RowRecordingPainter(const PagePainter& inner) : inner_(inner) {}
    void paintRow(int page, int y, const std::uint8_t* bytes, std::uint32_t* out) const override {
        inner_.paintRow(page, y, bytes, out);
        if (page >= 0 && page < kMaxPages && y >= 0 && y < kPageSize)
            painted_[static_cast<std::size_t>(page)][static_cast<std::size_t>(y)] = true;
    }
    bool painted(int page, int y) const {
        return painted_[static_cast<std::size_t>(page)][static_cast<std::size_t>(y)];
    }

private:
    const PagePainter& inner_;
    mutable std::array<std::array<bool, kPageSize>, kMaxPages> painted_{};
};

// Nothing of the previous file's pages may remain: every page row the load did not paint goes
// back to zero. A new session's image is already zero, so clearing it is only needed once the
// image has been written.
void clearUnpaintedRows(PageImage& image, const RowRecordingPainter& painter) {
    for (int page = 0; page < kMaxPages; ++page)
        for (int y = 0; y < kPageSize; ++y)
            if (!painter.painted(page, y)) {
                std::uint32_t* row = image.row(y) + page * kPageSize;
                if (std::any_of(row, row + kPageSize, [](std::uint32_t v) { return v != 0; }))
                    std::fill(row, row + kPageSize, 0u);
            }
}

// Why the file cannot be read at all (no read permission, in use), in describeCause's words;
// empty when it can.
std::string unreadableCause(const std::filesystem::path& path) {
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    if (in) return {};
    return describeCause(std::error_code(errno ? errno : EACCES, std::generic_category()));
}

LoadFailure loadFailed(LoadProblem problem, std::string text) {
    LoadFailure f;
    f.message = std::move(text);
    f.problem = problem;
    return f;
}

LoadOutcome fail(StyleSession& s, Platform& platform, BinaryFile& file) {
    file.close();
    std::string text = loadFailureMessage(s.stepText, s.style.path);
    // The specified lines stay; the real cause goes after them.
    if (const std::string cause = unreadableCause(s.style.path); !cause.empty()) {
        text += "\rThe system said: " + cause + ".";
        if (const std::string advice = causeAdvice(cause, Access::Reading); !advice.empty())
            text += "\r" + advice;
    } else if (!headerFitsFile(s.style.header, s.style.fileLength)) {
        text += "\r" + notStyleFileLine(s.style.path);
    }
    platform.message(text);
    s.style.loaded = false;
    s.style.clearDirtyFlags();
    s.selection.clear();
    return loadFailed(LoadProblem::Failed, std::move(text));
}

} // namespace

namespace {
// The load sequence from the header on, on a file opened by the caller.
LoadOutcome loadOpenedStyle(StyleSession& s, BinaryFile& file, Platform& platform,
                            const LoaderSet& loaders);
} // namespace

LoadOutcome initHeader(StyleSession& s, Platform& platform, const LoaderSet& loaders) {
    BusyCursor busy(platform);
    platform.doEvents();
    StyleFileState& style = s.style;
    s.stepText = "Init Header";

    std::error_code ec;
    if (!std::filesystem::is_regular_file(style.path, ec)) {
        std::string text = "Error: " + style.path.string() + " file error or not found.";
        platform.message(text);
        return loadFailed(LoadProblem::FileMissing, std::move(text));
    }

    // A save of this level that was cut short is finished or rolled back (and said so) before
    // either of its files is read, so the load never sees half of it.
    (void)reportInterruptedSaves(style.path, platform); // the messages were shown

    BinaryFile file(s.errors);
    // A load fills a fresh session: no error of an earlier command belongs to it.
    s.errors.clear();
    s.keptStyle = {};
    if (s.options.keepStyleContent && readStampedContent(style.path, s.keptStyle)) {
        style.loadedStamp = s.keptStyle.stamp;
        file.openBytes(s.keptStyle.bytes, style.path);
        const LoadOutcome outcome = loadOpenedStyle(s, file, platform, loaders);
        if (!outcome) s.keptStyle = {};
        return outcome;
    }
    // A failed open leaves its pending error, which ends the load below.
    static_cast<void>(file.open(style.path, BinaryFile::Mode::Read));
    style.loadedStamp = stampOf(style.path);
    return loadOpenedStyle(s, file, platform, loaders);
}

LoadOutcome initHeaderFromBytes(StyleSession& s, Platform& platform, const LoaderSet& loaders,
                                std::vector<std::uint8_t>& bytes) {
    BusyCursor busy(platform);
    s.stepText = "Init Header";
    BinaryFile file(s.errors);
    s.errors.clear();
    file.openBytes(bytes, s.style.path);
    return loadOpenedStyle(s, file, platform, loaders);
}

namespace {

LoadOutcome loadOpenedStyle(StyleSession& s, BinaryFile& file, Platform& platform,
                            const LoaderSet& loaders) {
    StyleFileState& style = s.style;
    style.fileLength = file.length();
    style.header = readStyleHeader(file, style.gIs24Bit);
    appendHeaderDetails(s, platform);

    if (style.loadOption == kLoadSprites) {
        locateSpriteSections(style);
        struct Step {
            const char* name;
            const SectionLoader& loader;
        };
        const Step g24[] = {{"Load Car Names", loaders.carNames},
                            {"Load 24bit Palette", loaders.palette24},
                            {"Load Sprite Info", loaders.spriteInfo},
                            {"Load Sprite Numbers", loaders.spriteNumbers},
                            {"Load Car Info", loaders.carInfo},
                            {"Load Deltas", loaders.deltas}};
        const Step gry[] = {
            {"Load Car Names", loaders.carNames},    {"Load Sprite Info", loaders.spriteInfo},
            {"Load 8bit Palette", loaders.palette8}, {"Load Sprite Numbers", loaders.spriteNumbers},
            {"Load Car Info", loaders.carInfo},      {"Load Deltas", loaders.deltas}};
        for (const Step& step :
             style.gIs24Bit ? std::span<const Step>(g24) : std::span<const Step>(gry))
            if (!runStep(s, file, platform, step.name, step.loader)) return fail(s, platform, file);
    } else if (style.loadOption == kLoadTiles) {
        locateTileSections(style);
        const char* palette = style.gIs24Bit ? "Load 24bit Palette" : "Load 8bit Palette";
        if (!runStep(s, file, platform, palette,
                     style.gIs24Bit ? loaders.palette24 : loaders.palette8))
            return fail(s, platform, file);
        if (!runStep(s, file, platform, "Calc Tile Sprite Info", loaders.tileRegions))
            return fail(s, platform, file);
    } else {
        platform.message("Unknown Load Option:" + std::to_string(style.loadOption));
    }

    auto painter = makePagePainter(s);
    if (s.options.showPages) {
        RowRecordingPainter recording(*painter);
        loadBlocks(s, file, platform, recording);
        clearUnpaintedRows(s.image, recording);
    } else {
        // Nothing is ever painted into this session's image: it is still all zero.
        loadBlocks(s, file, platform, *painter);
    }

    if (s.errors.hasPending()) return fail(s, platform, file);

    style.loaded = true;
    style.clearDirtyFlags();
    s.caption =
        windowCaption(style.gStyleFileName, style.gMapNumber, style.gIs24Bit, style.loadOption);
    file.close();
    return {};
}

} // namespace

} // namespace torquil
