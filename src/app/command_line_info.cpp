#include "app/command_line_info.h"

#include "base/version.h"

#include <ostream>

namespace torquil {

std::string windowUsage() {
    return "Usage: torquil [options] [STYLE]\n"
           "Edits the car graphics and car data of a style file (.G24 or .GRY) in a window.\n"
           "\n"
           "  STYLE              a style file to open with the sprites\n"
           "  -d                 debug mode: a run-time error stops the program\n"
           "  --workdir DIR      the program's directory (temporary files, dumps, exports)\n"
           "  --settings FILE    keep the settings in this INI file\n"
           "  --zoom N           the board's zoom, 1 to 4\n"
           "  --select N         select sprite N after the load\n"
           "  --view-deltas K    open the selected sprite's delta view (K: car or sprite)\n"
           "  --no-splash        start without the splash window\n"
           "  --screenshot PNG   save a picture of the window after the load, then quit\n"
           "  -h, --help         print this help and exit\n"
           "  --version          print the version and exit\n"
           "\n"
           "torquil-cli does the same work from scripts (torquil-cli --help).\n";
}

std::optional<int> answerInfoOptions(const std::vector<std::string>& arguments, std::ostream& out) {
    for (const std::string& a : arguments) {
        if (a == "--help" || a == "-h") {
            out << windowUsage();
            return 0;
        }
        if (a == "--version") {
            out << "torquil " << kVersion << '\n';
            return 0;
        }
    }
    return std::nullopt;
}

} // namespace torquil
