#pragma once
// Everything the core asks of the outside world. The Qt application implements it with real
// windows, the command line with the console, and the tests with recording fakes.

#include <filesystem>
#include <string>

namespace torquil {

enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Icon { None, Critical, Question, Warning, Information };
enum class Answer { Ok, Cancel, Yes, No };

struct Message {
    std::string text;  // lines joined with "\r" (carriage return alone)
    std::string title; // empty: the program's title
    Buttons buttons = Buttons::Ok;
    Icon icon = Icon::None;
    bool helpButton = false;
};

// The answer that changes nothing: Cancel where offered, else No, else OK.
[[nodiscard]] Answer safeAnswer(Buttons buttons);
// Whether an answer is one of the buttons offered.
[[nodiscard]] bool answerOffered(Buttons buttons, Answer answer);

// Modal message boxes.
class MessageSink {
public:
    virtual ~MessageSink() = default;
    virtual Answer show(const Message& message) = 0;
};

// The progress form workingFrm: a title, a text, a range and a Stop button.
class ProgressSink {
public:
    virtual ~ProgressSink() = default;
    // Showing the form clears the stop request.
    virtual void open(const std::string& title, const std::string& text, int maximum) = 0;
    virtual void setTitle(const std::string& title) = 0;
    virtual void setText(const std::string& text) = 0;
    virtual void setMaximum(int maximum) = 0;
    virtual void setValue(int value) = 0;
    virtual void close() = 0;
    // gStopRequested: set by the Stop button, read by the loops.
    [[nodiscard]] virtual bool stopRequested() const = 0;
    virtual void requestStop() = 0;
};

// The details window detailsFrm: diagnostic lines appended by loaders and savers.
class DetailsSink {
public:
    virtual ~DetailsSink() = default;
    virtual void append(const std::string& line) = 0;
};

// Per-user settings: string values by section and key; a missing value reads as "".
class SettingsStore {
public:
    virtual ~SettingsStore() = default;
    [[nodiscard]] virtual std::string get(const std::string& section, const std::string& key) = 0;
    virtual void set(const std::string& section, const std::string& key,
                     const std::string& value) = 0;
};

// Synchronous WAV playback; returns when the sound has finished (or at once without a device).
class SoundPlayer {
public:
    virtual ~SoundPlayer() = default;
    [[nodiscard]] virtual bool playWavSync(const std::filesystem::path& wav) = 0;
    // Whether there is a device to play on (without one, playing does nothing).
    [[nodiscard]] virtual bool hasOutput() const { return true; }
};

// The rest of the desktop: hourglass, event pump, external text editor, help.
class Desktop {
public:
    virtual ~Desktop() = default;
    virtual void setBusy(bool busy) = 0;
    // "Let pending events run" (DoEvents).
    virtual void processEvents() = 0;
    // Opens a text file in the system's text editor; false when that failed.
    [[nodiscard]] virtual bool openTextFile(const std::filesystem::path& file) = 0;
    [[nodiscard]] virtual bool hasHelp() const = 0;
    [[nodiscard]] virtual bool showHelp(int context) = 0;
    // Repaints the page board from the page image (a page has arrived, pixels changed).
    virtual void refreshBoard() {}
};

// One object handing out all the pieces, so the core takes a single reference.
class Platform {
public:
    virtual ~Platform() = default;
    virtual MessageSink& messages() = 0;
    virtual ProgressSink& progress() = 0;
    virtual DetailsSink& details() = 0;
    virtual SettingsStore& settings() = 0;
    virtual SoundPlayer& sound() = 0;
    virtual Desktop& desktop() = 0;

    // Shorthands used all over the core.
    Answer message(const std::string& text, Buttons buttons = Buttons::Ok, Icon icon = Icon::None,
                   const std::string& title = {}) {
        return messages().show(Message{text, title, buttons, icon, false});
    }
    void detail(const std::string& line) { details().append(line); }
    void doEvents() { desktop().processEvents(); }
};

// Sets the hourglass for a scope, restoring the pointer on every way out.
class BusyCursor {
public:
    explicit BusyCursor(Platform& p) : desktop_(p.desktop()) { desktop_.setBusy(true); }
    ~BusyCursor() { desktop_.setBusy(false); }
    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;

private:
    Desktop& desktop_;
};

} // namespace torquil
