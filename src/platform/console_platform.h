#pragma once
// The platform of torquil-cli: details lines on standard output, message boxes on standard error
// ("message: " per line, "answer: " for questions), no windows.

#include "platform/platform.h"

#include <iosfwd>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace torquil {

class ConsolePlatform : public Platform,
                        MessageSink,
                        ProgressSink,
                        DetailsSink,
                        SettingsStore,
                        SoundPlayer,
                        Desktop {
public:
    ConsolePlatform(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

    // The answer given to every question; without one, the answer that changes nothing.
    void setAnswer(std::optional<Answer> answer) { answer_ = answer; }
    // Whether --play may really play sounds (through the system's command line player).
    void setPlaybackEnabled(bool on) { playback_ = on; }
    // Why the last playback failed; empty when it played (or was not tried).
    const std::string& playbackError() const { return playbackError_; }
    // Whether details lines go to standard output (off for commands with their own output).
    void setDetailsEcho(bool on) { echoDetails_ = on; }
    const std::vector<std::string>& detailLines() const { return detailLines_; }

    MessageSink& messages() override { return *this; }
    ProgressSink& progress() override { return *this; }
    DetailsSink& details() override { return *this; }
    SettingsStore& settings() override { return *this; }
    SoundPlayer& sound() override { return *this; }
    Desktop& desktop() override { return *this; }

    Answer show(const Message& message) override;

    void open(const std::string&, const std::string&, int) override { stop_ = false; }
    void setTitle(const std::string&) override {}
    void setText(const std::string&) override {}
    void setMaximum(int) override {}
    void setValue(int) override {}
    void close() override {}
    bool stopRequested() const override { return stop_; }
    void requestStop() override { stop_ = true; }

    void append(const std::string& line) override;

    std::string get(const std::string& section, const std::string& key) override;
    void set(const std::string& section, const std::string& key, const std::string& value) override;

    bool playWavSync(const std::filesystem::path& wav) override;

    void setBusy(bool) override {}
    void processEvents() override {}
    bool openTextFile(const std::filesystem::path& file) override;
    bool hasHelp() const override { return false; }
    bool showHelp(int) override { return false; }

private:
    std::ostream& out_;
    std::ostream& err_;
    std::optional<Answer> answer_;
    bool playback_ = false;
    std::string playbackError_;
    bool echoDetails_ = true;
    std::vector<std::string> detailLines_;
    bool stop_ = false;
    std::map<std::pair<std::string, std::string>, std::string> settings_;
};

// Splits a message text at carriage returns (and line feeds) into its lines.
[[nodiscard]] std::vector<std::string> messageLines(const std::string& text);
[[nodiscard]] std::string answerName(Answer answer);
[[nodiscard]] std::optional<Answer> parseAnswer(const std::string& word);

} // namespace torquil
