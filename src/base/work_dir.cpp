#include "base/work_dir.h"

#include <cctype>
#include <cstdlib>
#include <fstream>

namespace torquil {

namespace fs = std::filesystem;

bool isWritableDirectory(const fs::path& dir) {
    std::error_code ec;
    if (!fs::is_directory(dir, ec)) return false;
    fs::path probe = dir / ".torquil-write-probe";
    {
        std::ofstream out(probe);
        if (!out) return false;
    }
    fs::remove(probe, ec);
    return true;
}

static fs::path userDataDir() {
#if defined(_WIN32)
    if (const char* appData = std::getenv("APPDATA")) return fs::path(appData) / "Torquil";
#elif defined(__APPLE__)
    if (const char* home = std::getenv("HOME"))
        return fs::path(home) / "Library" / "Application Support" / "Torquil";
#else
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg)
        return fs::path(xdg) / "torquil";
    if (const char* home = std::getenv("HOME")) return fs::path(home) / ".local/share/torquil";
#endif
    return fs::temp_directory_path() / "torquil";
}

bool isInstalledProgramFolder(const fs::path& folder) {
    std::error_code ec;
    const fs::path clean = fs::weakly_canonical(folder, ec).lexically_normal();
    const fs::path dir = clean.has_filename() ? clean : clean.parent_path();
    return dir.filename() == "bin" && fs::is_directory(dir.parent_path() / "share", ec);
}

fs::path defaultWorkDir(const fs::path& executable) {
    std::error_code ec;
    fs::path folder = fs::absolute(executable, ec).parent_path();
    if (!folder.empty() && !isInstalledProgramFolder(folder) && isWritableDirectory(folder))
        return folder;
    fs::path data = userDataDir();
    fs::create_directories(data, ec);
    return data;
}

fs::path findReadme(const fs::path& workDir, const fs::path& programDir) {
    const fs::path beside = programDir / "readme.txt";
    const fs::path places[] = {
        workDir / "readme.txt", beside,
        (programDir / ".." / "share" / "doc" / "torquil" / "readme.txt").lexically_normal()};
    std::error_code ec;
    for (const fs::path& place : places)
        if (fs::is_regular_file(place, ec)) return place;
    return beside;
}

bool commandLineHasDebugSwitch(const std::vector<std::string>& arguments) {
    std::string line;
    for (const auto& a : arguments) line += " " + a;
    return line.find("-d") != std::string::npos;
}

static std::string lower(std::string s) {
    for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

fs::path findFileNoCase(const fs::path& folder, const std::string& name) {
    std::error_code ec;
    fs::path exact = folder / name;
    const std::string wanted = lower(name);
#ifdef _WIN32
    // The folder's own spelling of the name, as on a case-sensitive system: messages name the
    // file as the user sees it.
    if (fs::exists(exact, ec))
        for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
            if (lower(it->path().filename().string()) == wanted) return it->path();
#endif
    if (fs::exists(exact, ec)) return exact;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        if (lower(it->path().filename().string()) == wanted) return it->path();
    }
    return exact;
}

int deleteTemporaryFiles(const fs::path& folder) {
    int removed = 0;
    std::error_code ec;
    std::vector<fs::path> doomed;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string n = it->path().filename().string();
        // "~*.*": a tilde name with an extension.
        if (!n.empty() && n[0] == '~' && n.find('.') != std::string::npos &&
            it->is_regular_file(ec))
            doomed.push_back(it->path());
    }
    for (const auto& p : doomed)
        if (fs::remove(p, ec)) ++removed;
    return removed;
}

} // namespace torquil
