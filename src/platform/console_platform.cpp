#include "platform/console_platform.h"

#include "platform/console_sound.h"

#include <ostream>

namespace torquil {

std::vector<std::string> messageLines(const std::string& text) {
    std::vector<std::string> lines;
    std::string line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c == '\r' || c == '\n') {
            lines.push_back(line);
            line.clear();
            if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        } else {
            line += c;
        }
    }
    lines.push_back(line);
    return lines;
}

std::string answerName(Answer answer) {
    switch (answer) {
    case Answer::Ok:
        return "ok";
    case Answer::Cancel:
        return "cancel";
    case Answer::Yes:
        return "yes";
    case Answer::No:
        return "no";
    }
    return "ok";
}

std::optional<Answer> parseAnswer(const std::string& word) {
    if (word == "ok") return Answer::Ok;
    if (word == "cancel") return Answer::Cancel;
    if (word == "yes") return Answer::Yes;
    if (word == "no") return Answer::No;
    return std::nullopt;
}

Answer ConsolePlatform::show(const Message& message) {
    for (const auto& line : messageLines(message.text)) err_ << "message: " << line << '\n';
    if (message.buttons == Buttons::Ok) return Answer::Ok;
    Answer given = safeAnswer(message.buttons);
    if (answer_ && answerOffered(message.buttons, *answer_)) given = *answer_;
    // OK/Cancel questions: "yes" means OK and "no" means Cancel, so one --answer fits all.
    if (answer_ && message.buttons == Buttons::OkCancel) {
        if (*answer_ == Answer::Yes) given = Answer::Ok;
        if (*answer_ == Answer::No) given = Answer::Cancel;
    }
    err_ << "answer: " << answerName(given) << '\n';
    return given;
}

void ConsolePlatform::append(const std::string& line) {
    detailLines_.push_back(line);
    if (echoDetails_) out_ << line << '\n';
}

std::string ConsolePlatform::get(const std::string& section, const std::string& key) {
    auto it = settings_.find({section, key});
    return it == settings_.end() ? std::string{} : it->second;
}

void ConsolePlatform::set(const std::string& section, const std::string& key,
                          const std::string& value) {
    settings_[{section, key}] = value;
}

bool ConsolePlatform::playWavSync(const std::filesystem::path& wav) {
    if (!playback_) return false;
    const Result<void> played = playWavFileSync(wav);
    playbackError_ = played.message();
    return played.ok();
}

bool ConsolePlatform::openTextFile(const std::filesystem::path& file) {
    err_ << "open text file: " << file.string() << '\n';
    return false;
}

} // namespace torquil
