#pragma once
// Start-up: the command line, the program's directory, the splash, the main form.

#include <QString>
#include <QStringList>

#include <filesystem>

namespace torquil {

struct StartupArgs {
    QString style;      // a style file to open with the sprites option
    QString screenshot; // save a picture of the main window after the load, then quit
    QString workDir;    // overrides the program's directory
    QString settings;   // an INI settings file instead of the user's store
    int zoom = 0;       // 1..4 overrides the remembered zoom
    int select = 0;     // an absolute sprite number to select after the load
    // After the selection, open the delta view: "plain" or "car"; the screenshot then shows it.
    QString viewDeltas;
    bool splash = true;
    // Set when a file or folder option was given an option-looking word ("--screenshot
    // --no-splash"): the program says so and starts nothing.
    QString error;
};

// Reads the arguments after the program name; unknown options are ignored, so a
// shortcut with extra options still starts the editor. Debug mode is not an option here: "-d"
// anywhere in the command line turns it on.
[[nodiscard]] StartupArgs parseStartupArgs(const QStringList& arguments);

// The window's work folder: --workdir when given; for an installed program (its folder is a
// system layout's bin, see isInstalledProgramFolder) the per-user application data folder,
// created when missing; else, as for a portable copy or a build folder, the program's folder
// when it is writable.
[[nodiscard]] std::filesystem::path windowWorkDir(const QString& workDirArg,
                                                  const QString& executable);

// The whole program: returns the exit status.
[[nodiscard]] int runTorquil(int argc, char** argv);

} // namespace torquil
