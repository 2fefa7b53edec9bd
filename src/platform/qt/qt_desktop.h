#pragma once
// Hourglass, event pump, the system's text viewer and the (absent) help file.

#include "platform/platform.h"

#include <functional>

namespace torquil {

// The program that shows text files on this system, as named in the readme failure message.
const char* textEditorName();

class QtDesktop : public Desktop {
public:
    void setBusy(bool busy) override;
    void processEvents() override;
    bool openTextFile(const std::filesystem::path& file) override;
    bool hasHelp() const override { return false; }
    bool showHelp(int context) override { return false; }
    void refreshBoard() override {
        if (onRefreshBoard) onRefreshBoard();
    }

    // Set by the main window: repaint the page board.
    std::function<void()> onRefreshBoard;
    // Tests replace the opening of files (no desktop session there).
    std::function<bool(const std::filesystem::path&)> openTextFileHook;

private:
    int busyDepth_ = 0;
};

} // namespace torquil
