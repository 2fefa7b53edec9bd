#pragma once
// Hourglass, event pump, the system's text viewer and the help window.

#include "platform/platform.h"
#include "platform/qt/window_pacer.h"

#include <functional>

namespace torquil {

class QtDesktop : public Desktop {
public:
    void setBusy(bool busy) override;
    // Runs the event loop at most once per WindowPacer::kInterval: the loops that call it after
    // every row still test the Stop request each time, and a click on Stop is handled in the
    // next turn.
    void processEvents() override;
    [[nodiscard]] bool openTextFile(const std::filesystem::path& file) override;
    [[nodiscard]] bool hasHelp() const override { return static_cast<bool>(onShowHelp); }
    [[nodiscard]] bool showHelp(int context) override { return onShowHelp && onShowHelp(context); }
    void refreshBoard() override {
        if (onRefreshBoard) onRefreshBoard();
    }

    // Set by the main window: repaint the page board.
    std::function<void()> onRefreshBoard;
    // Set by the main window: opens the manual at a help context's topic.
    std::function<bool(int)> onShowHelp;
    // Tests replace the opening of files (no desktop session there).
    std::function<bool(const std::filesystem::path&)> openTextFileHook;

    // How often the event loop really runs (tests set its clock and count its turns).
    WindowPacer& eventPacer() { return events_; }

private:
    int busyDepth_ = 0;
    WindowPacer events_;
};

} // namespace torquil
