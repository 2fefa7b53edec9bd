#pragma once
// The undo and redo history of one open style file. It keeps the steps in order with a cursor
// (the steps before it are done) and the place of the last save, so that the dirty flags always
// say exactly what differs from the file on disk: back at the save they are clear, a step away
// from it they hold what that step changed. The history is capped in steps and in memory; a new
// session (another file opened) starts with an empty one.

#include "session/edit_step.h"

#include <cstddef>
#include <deque>
#include <memory>
#include <string>

namespace torquil {

class StyleSession;
struct StyleFileState;

struct HistoryLimits {
    std::size_t steps = 100;
    std::size_t bytes = 64u << 20; // 64 MB
};

class EditHistory {
public:
    explicit EditHistory(HistoryLimits limits = {}) : limits_(limits) {}

    // Adds a step just done (an empty one is dropped); steps that were undone are forgotten.
    // Returns false when the step was empty.
    [[nodiscard]] bool push(EditStep step);

    [[nodiscard]] bool canUndo() const { return cursor_ > 0; }
    [[nodiscard]] bool canRedo() const { return cursor_ < steps_.size(); }
    // Names of the step that undo or redo would take ("Import Sprite 61"); empty when none.
    [[nodiscard]] std::string undoName() const;
    [[nodiscard]] std::string redoName() const;

    // Takes the last done step back (or does the next undone one again) on the session's tables,
    // repaints its rectangles and sets the dirty flags. nullptr when there was nothing to do.
    [[nodiscard]] const EditStep* undo(StyleSession& session);
    [[nodiscard]] const EditStep* redo(StyleSession& session);

    // A save ran: the tables as they are now are what the file holds, except for the parts the
    // save left flagged (a failed step).
    void markSaved(const StyleFileState& style);
    // Forgets every step; the state now is the saved one (a load, or a new file).
    void clear(const StyleFileState& style);

    [[nodiscard]] std::size_t size() const { return steps_.size(); }
    [[nodiscard]] std::size_t cursor() const { return cursor_; }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }
    // The cursor stands where the file was last saved (the flags hold only what the save left).
    [[nodiscard]] bool atSavePoint() const { return cursor_ == saved_; }
    [[nodiscard]] const HistoryLimits& limits() const { return limits_; }

private:
    friend class EditScope;
    // The dirty marks at the cursor: what the save left plus every step between the save and here.
    [[nodiscard]] DirtyMarks marksAtCursor() const;
    void trim();

    HistoryLimits limits_;
    std::deque<EditStep> steps_;
    std::size_t cursor_ = 0;
    std::size_t saved_ = 0; // the cursor of the last save (or the load)
    DirtyMarks base_;       // what still differs from the file at the saved cursor
    std::size_t bytes_ = 0;
    std::unique_ptr<EditRecorder> open_; // the outermost edit scope's recording
    int depth_ = 0;                      // edit scopes open
};

// One edit of the session as one step of its history: the outermost scope records the tables it
// names and, when it ends, pushes the step; scopes opened inside it (an edit made of other edits,
// such as an import that overwrites a CLUT) join it. An edit stopped by an error is recorded with
// what it changed up to there.
class EditScope {
public:
    EditScope(StyleSession& session, unsigned touches, std::string name);
    ~EditScope();
    EditScope(const EditScope&) = delete;
    EditScope& operator=(const EditScope&) = delete;

    // A page rectangle the edit paints (repainted on undo and redo).
    void touch(const PageArea& rect);
    // The step's name when the edit turned out otherwise ("Overwrite CLUT 3" for a refused import
    // that changed the CLUT); only the outermost scope's name counts.
    void rename(std::string name) { name_ = std::move(name); }
    [[nodiscard]] bool outermost() const { return outermost_; }
    // Ends the scope before its end of life; true when it pushed a step (outermost only).
    [[nodiscard]] bool end();

private:
    StyleSession& session_;
    std::string name_;
    bool outermost_ = false;
    bool ended_ = false;
};

// The name of a step: "Import Sprite 61".
[[nodiscard]] std::string stepName(const char* what, int number);

} // namespace torquil
