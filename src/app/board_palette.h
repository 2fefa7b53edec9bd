#pragma once
// The program's colours: the dark of the page board for every window and dialog, so that a
// dialog opened over the board is not a bright box on a dark desk.

class QApplication;
class QPalette;

namespace torquil {

// The dark palette, built around the board's background.
[[nodiscard]] QPalette boardPalette();
// Gives the application the Fusion style (which follows a palette on every platform) and the
// board's palette; every window and dialog made afterwards takes them.
void applyBoardPalette(QApplication& app);

} // namespace torquil
