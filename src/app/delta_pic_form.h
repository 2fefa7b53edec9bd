#pragma once
// DeltaPicFrm: a small window that shows sprite-sized pictures enlarged with square pixels.
// With one picture (a transparency mask) it shows that picture in a one-pixel border. With a
// sprite's delta frames it shows all of them in a numbered strip and one enlarged, which can be
// stepped through or played as an animation.

#include <QDialog>
#include <QImage>
#include <QString>

#include <functional>
#include <vector>

class QHBoxLayout;
class QLabel;
class QPushButton;
class QTimer;

namespace torquil {

class DeltaPicForm : public QDialog {
    Q_OBJECT
public:
    // `picture` is the sprite-sized image (width x height); the window shows it enlarged inside
    // a (width + 2) x (height + 2) area, with `toolTip` on the picture.
    DeltaPicForm(const QImage& picture, const QString& title, const QString& toolTip,
                 QWidget* parent = nullptr);
    // The delta view: `frames` are the sprite-sized pictures of deltas 0, 1, ... (at least one).
    DeltaPicForm(const std::vector<QImage>& frames, const QString& title,
                 QWidget* parent = nullptr);

    int scale() const { return scale_; }
    // The (width + 2) x (height + 2) picture before enlarging (the current frame's).
    const QImage& framedPicture() const { return framed_; }

    // The delta view's frames: the one shown enlarged (0-based), stepping (wrapping round) and
    // the animation.
    int frameCount() const { return static_cast<int>(frames_.size()); }
    int currentFrame() const { return current_; }
    void showFrame(int index);
    void stepForward();
    void stepBack();
    void setPlaying(bool playing);
    bool isPlaying() const;
    // The strip of all frames with their numbers, before it is put on screen.
    const QImage& strip() const { return strip_; }
    // Where frame i lies in the strip.
    QRect stripFrameRect(int index) const;
    // The delta view's "Add Delta" and "Remove Delta" buttons; remove is given the frame shown.
    void offerDeltaEdits(std::function<void()> add, std::function<void(int frame)> remove);
    // The delta view's "Edit in Paint Program" button (also Ctrl+E in the view).
    void offerPaintEdit(std::function<void()> edit);

private:
    void buildStrip();
    void setPicture(const QImage& picture);

    QLabel* deltaPic_ = nullptr;
    QLabel* frameLabel_ = nullptr;
    QPushButton* playButton_ = nullptr;
    QTimer* timer_ = nullptr;
    QHBoxLayout* buttons_ = nullptr;
    QImage framed_;
    QImage strip_;
    std::vector<QImage> frames_;
    int scale_ = 1;
    int stripScale_ = 1;
    int current_ = 0;
};

} // namespace torquil
