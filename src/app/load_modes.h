#pragma once
// The three modes of the open dialog: what each one shows and where it keeps its settings.

#include <QString>

namespace torquil {

enum class DialogMode { Style = 1, Bitmap = 2, CarPack = 3 };

struct StyleFileState;

// The dialog's caption; the bitmap mode names the open style's level and load option.
[[nodiscard]] QString dialogCaption(DialogMode mode, const StyleFileState& style);
// File patterns separated by ";", e.g. "*.GRY;*.G24".
[[nodiscard]] QString filePattern(DialogMode mode, const StyleFileState& style);
// The settings section of a mode: "Style", "BMP" or "GC3".
[[nodiscard]] QString settingsSection(DialogMode mode);
// Caption of the options frame for a chosen file name ("" before any choice):
// "Port Alder 24bit-Load Options:" or "-Load Options:".
[[nodiscard]] QString optionsFrameCaption(const QString& fileName);
// Whether a file name matches one of the ";"-separated patterns, ignoring case.
[[nodiscard]] bool matchesFilePattern(const QString& fileName, const QString& pattern);

} // namespace torquil
