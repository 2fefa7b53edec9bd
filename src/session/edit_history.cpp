#include "session/edit_history.h"

#include "session/style_session.h"

#include <algorithm>

namespace torquil {

std::string stepName(const char* what, int number) {
    return std::string(what) + " " + std::to_string(number);
}

bool EditHistory::push(EditStep step) {
    if (step.empty()) return false;
    // Forgetting the undone steps: when the save lay among them, the file now differs from every
    // state still reachable by what they changed.
    if (saved_ > cursor_) {
        for (std::size_t i = cursor_; i < saved_; ++i) base_.add(steps_[i].marks());
        saved_ = cursor_;
    }
    while (steps_.size() > cursor_) {
        bytes_ -= steps_.back().bytes();
        steps_.pop_back();
    }
    bytes_ += step.bytes();
    steps_.push_back(std::move(step));
    ++cursor_;
    trim();
    return true;
}

void EditHistory::trim() {
    // The newest step always stays, even when it alone is over the memory cap.
    while (steps_.size() > 1 && (steps_.size() > limits_.steps || bytes_ > limits_.bytes)) {
        if (saved_ == 0) {
            base_.add(steps_.front().marks()); // the save lies before the oldest step kept
        } else {
            --saved_;
        }
        bytes_ -= steps_.front().bytes();
        steps_.pop_front();
        --cursor_;
    }
}

std::string EditHistory::undoName() const {
    return canUndo() ? steps_[cursor_ - 1].name() : std::string{};
}

std::string EditHistory::redoName() const {
    return canRedo() ? steps_[cursor_].name() : std::string{};
}

DirtyMarks EditHistory::marksAtCursor() const {
    DirtyMarks marks = base_;
    for (std::size_t i = std::min(cursor_, saved_); i < std::max(cursor_, saved_); ++i)
        marks.add(steps_[i].marks());
    return marks;
}

const EditStep* EditHistory::undo(StyleSession& session) {
    if (!canUndo()) return nullptr;
    const EditStep& step = steps_[--cursor_];
    step.undo(session);
    marksAtCursor().applyTo(session.style);
    return &step;
}

const EditStep* EditHistory::redo(StyleSession& session) {
    if (!canRedo()) return nullptr;
    const EditStep& step = steps_[cursor_++];
    step.redo(session);
    marksAtCursor().applyTo(session.style);
    return &step;
}

void EditHistory::markSaved(const StyleFileState& style) {
    saved_ = cursor_;
    base_ = DirtyMarks::of(style);
}

EditScope::EditScope(StyleSession& session, unsigned touches, std::string name)
    : session_(session), name_(std::move(name)) {
    EditHistory& h = session.history;
    outermost_ = h.depth_++ == 0;
    // A face without undo records nothing: the edit sets its dirty flags itself.
    if (outermost_ && session.options.keepUndo)
        h.open_ = std::make_unique<EditRecorder>(session, touches);
}

EditScope::~EditScope() {
    (void)end(); // whether a step was pushed is the business of an explicit end() only
}

bool EditScope::end() {
    if (ended_) return false;
    ended_ = true;
    EditHistory& h = session_.history;
    --h.depth_;
    if (!outermost_ || !h.open_) return false;
    std::unique_ptr<EditRecorder> recorder = std::move(h.open_);
    try {
        return h.push(recorder->finish(session_, std::move(name_)));
    } catch (const std::exception&) {
        // Out of memory while recording: the edit stands, it just cannot be taken back.
        return false;
    }
}

void EditScope::touch(const PageArea& rect) {
    if (session_.history.open_) session_.history.open_->touch(rect);
}

void EditHistory::clear(const StyleFileState& style) {
    steps_.clear();
    cursor_ = saved_ = 0;
    bytes_ = 0;
    base_ = DirtyMarks::of(style);
}

} // namespace torquil
