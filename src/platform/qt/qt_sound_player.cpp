#include "platform/qt/qt_sound_player.h"

#include "platform/qt/wav_length.h"

#include <QAudioDevice>
#include <QAudioOutput>
#include <QEventLoop>
#include <QMediaDevices>
#include <QMediaPlayer>
#include <QTimer>
#include <QUrl>

namespace torquil {

bool QtSoundPlayer::hasOutput() const {
    if (outputOverride) return *outputOverride;
    return !QMediaDevices::audioOutputs().isEmpty();
}

bool QtSoundPlayer::playWavSync(const std::filesystem::path& wav) {
    if (!hasOutput()) return false;
    const std::optional<std::int64_t> length = wavDurationMs(wav);
    if (!length) return false;

    QMediaPlayer player;
    QAudioOutput output;
    player.setAudioOutput(&output);
    QEventLoop loop;
    bool played = false;
    QObject::connect(&player, &QMediaPlayer::mediaStatusChanged, &loop,
                     [&](QMediaPlayer::MediaStatus status) {
                         if (status == QMediaPlayer::EndOfMedia) {
                             played = true;
                             loop.quit();
                         } else if (status == QMediaPlayer::InvalidMedia) {
                             loop.quit();
                         }
                     });
    QObject::connect(&player, &QMediaPlayer::errorOccurred, &loop, [&] { loop.quit(); });
    // A back end that never reports the end must not hang the program.
    QTimer::singleShot(static_cast<int>(std::min<std::int64_t>(*length + 2000, 600000)), &loop,
                       &QEventLoop::quit);
    player.setSource(QUrl::fromLocalFile(QString::fromStdString(wav.string())));
    player.play();
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    player.stop();
    return played;
}

} // namespace torquil
