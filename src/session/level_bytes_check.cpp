#include "session/level_bytes_check.h"

#include "cars/fxt.h"
#include "platform/platform.h"
#include "session/load_sequence.h"
#include "session/loaders.h"
#include "session/style_session.h"
#include "style/level_name.h"

#include <algorithm>

namespace torquil {

namespace {

// A platform that shows nothing and keeps the messages a check gives.
class QuietPlatform : public Platform,
                      MessageSink,
                      ProgressSink,
                      DetailsSink,
                      SettingsStore,
                      SoundPlayer,
                      Desktop {
public:
    std::vector<std::string> said;

    MessageSink& messages() override { return *this; }
    ProgressSink& progress() override { return *this; }
    DetailsSink& details() override { return *this; }
    SettingsStore& settings() override { return *this; }
    SoundPlayer& sound() override { return *this; }
    Desktop& desktop() override { return *this; }

private:
    Answer show(const Message& message) override {
        said.push_back(message.text);
        return safeAnswer(message.buttons);
    }
    void open(const std::string&, const std::string&, int) override {}
    void setTitle(const std::string&) override {}
    void setText(const std::string&) override {}
    void setMaximum(int) override {}
    void setValue(int) override {}
    void close() override {}
    bool stopRequested() const override { return false; }
    void requestStop() override {}
    void append(const std::string&) override {}
    std::string get(const std::string&, const std::string&) override { return {}; }
    void set(const std::string&, const std::string&, const std::string&) override {}
    bool playWavSync(const std::filesystem::path&) override { return false; }
    void setBusy(bool) override {}
    void processEvents() override {}
    bool openTextFile(const std::filesystem::path&) override { return false; }
    bool hasHelp() const override { return false; }
    bool showHelp(int) override { return false; }
};

} // namespace

namespace {

// The load of loadLevelBytes on the caller's bytes where they lie: the loaders only read them.
Result<std::unique_ptr<StyleSession>> loadLevelBytesInPlace(const std::filesystem::path& stylePath,
                                                            std::vector<std::uint8_t>& style,
                                                            const std::vector<std::uint8_t>& fxt) {
    QuietPlatform quiet;
    // A check and the sprites' places: nothing of it is shown or undone.
    AppOptions options;
    options.showPages = false;
    options.keepUndo = false;
    auto session = std::make_unique<StyleSession>(options);
    prepareStyle(session->style, stylePath, kLoadSprites);
    LoaderSet loaders = standardLoaders();
    // The names come from the text file about to be written, not from the one on the disk.
    loaders.carNames = [&fxt](StyleSession& s, BinaryFile&, Platform& platform) {
        s.names = CarNames{};
        if (fxt.empty()) return true;
        s.names.decodedText = decodeFxtBytes(fxt, &s.names);
        s.names.fromFxt = true;
        if (std::none_of(s.names.keys.begin(), s.names.keys.end(),
                         [](const std::string& key) { return !key.empty(); })) {
            platform.message("ENGLISH.FXT would hold no car names (empty or damaged).");
            return false;
        }
        return true;
    };
    // Warnings of a load that then opens the file refuse nothing: the editor opens it.
    if (initHeaderFromBytes(*session, quiet, loaders, style)) return session;
    std::string why;
    for (const std::string& line : quiet.said) why += (why.empty() ? "" : "\r") + line;
    if (why.empty()) why = "The editor could not open the result.";
    return fail(std::move(why));
}

} // namespace

Result<std::unique_ptr<StyleSession>> loadLevelBytes(const std::filesystem::path& stylePath,
                                                     std::vector<std::uint8_t> style,
                                                     const std::vector<std::uint8_t>& fxt) {
    return loadLevelBytesInPlace(stylePath, style, fxt);
}

Result<void> checkLentLevelBytes(const std::filesystem::path& stylePath,
                                 std::vector<std::uint8_t>& style,
                                 const std::vector<std::uint8_t>& fxt) {
    auto loaded = loadLevelBytesInPlace(stylePath, style, fxt);
    if (!loaded) return loaded.error();
    return done();
}

Result<void> checkLevelBytes(const std::filesystem::path& stylePath,
                             std::vector<std::uint8_t> style,
                             const std::vector<std::uint8_t>& fxt) {
    return checkLentLevelBytes(stylePath, style, fxt);
}

} // namespace torquil
