#pragma once
// A platform that records everything the core asks of it, for tests.

#include "platform/platform.h"

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace torquil::testing {

class FakePlatform : public Platform,
                     MessageSink,
                     ProgressSink,
                     DetailsSink,
                     SettingsStore,
                     SoundPlayer,
                     Desktop {
public:
    std::vector<Message> shownMessages;
    std::deque<Answer> scriptedAnswers; // consumed by questions in order; then the safe answer
    std::vector<std::string> detailLines;
    std::vector<std::string> progressTitles;
    std::vector<std::string> progressTexts;
    std::vector<int> progressValues;
    int progressOpenCount = 0;
    int progressCloseCount = 0;
    bool stop = false;
    int stopAfterEvents = -1; // >= 0: request a stop once this many events have run
    int eventsRun = 0;
    std::map<std::pair<std::string, std::string>, std::string> settingValues;
    std::vector<std::filesystem::path> playedSounds;
    std::vector<std::vector<unsigned char>> playedSoundBytes;
    bool soundPlays = true;
    std::vector<std::filesystem::path> openedTextFiles;
    bool textOpenSucceeds = true;
    bool busy = false;

    MessageSink& messages() override { return *this; }
    ProgressSink& progress() override { return *this; }
    DetailsSink& details() override { return *this; }
    SettingsStore& settings() override { return *this; }
    SoundPlayer& sound() override { return *this; }
    Desktop& desktop() override { return *this; }

    Answer show(const Message& m) override {
        shownMessages.push_back(m);
        if (m.buttons == Buttons::Ok) return Answer::Ok;
        if (!scriptedAnswers.empty()) {
            Answer a = scriptedAnswers.front();
            scriptedAnswers.pop_front();
            return a;
        }
        return safeAnswer(m.buttons);
    }
    // The texts of all messages shown, in order.
    std::vector<std::string> messageTexts() const {
        std::vector<std::string> out;
        for (const auto& m : shownMessages) out.push_back(m.text);
        return out;
    }

    void open(const std::string& title, const std::string& text, int maximum) override {
        (void)maximum;
        ++progressOpenCount;
        progressTitles.push_back(title);
        progressTexts.push_back(text);
        stop = false;
    }
    void setTitle(const std::string& t) override { progressTitles.push_back(t); }
    void setText(const std::string& t) override { progressTexts.push_back(t); }
    void setMaximum(int) override {}
    void setValue(int v) override { progressValues.push_back(v); }
    void close() override { ++progressCloseCount; }
    bool stopRequested() const override { return stop; }
    void requestStop() override { stop = true; }

    void append(const std::string& line) override { detailLines.push_back(line); }

    std::string get(const std::string& s, const std::string& k) override {
        auto it = settingValues.find({s, k});
        return it == settingValues.end() ? std::string{} : it->second;
    }
    void set(const std::string& s, const std::string& k, const std::string& v) override {
        settingValues[{s, k}] = v;
    }

    bool playWavSync(const std::filesystem::path& wav) override;

    void setBusy(bool b) override { busy = b; }
    void processEvents() override {
        ++eventsRun;
        if (stopAfterEvents >= 0 && eventsRun >= stopAfterEvents) stop = true;
    }
    bool openTextFile(const std::filesystem::path& f) override {
        openedTextFiles.push_back(f);
        return textOpenSucceeds;
    }
    bool hasHelp() const override { return false; }
    bool showHelp(int) override { return false; }
};

} // namespace torquil::testing
