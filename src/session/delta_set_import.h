#pragma once
// Reading a delta set picture back into the selected sprite's deltas. The only place that changes
// a delta's run lines; the save sequence then writes the delta store.

#include "exchange/deltas.h"

#include <filesystem>
#include <utility>
#include <vector>

namespace torquil {

class Platform;
class StyleSession;

struct DeltaSetImport {
    bool imported = false;
    int changed = 0; // deltas whose run lines were replaced
};

// Reads a clean or dirty delta set (BMP, or PNG by the name) of the selected sprite, checked as
// the sprite import checks a picture. A frame that shows its delta as it is keeps its run lines
// exactly; a changed frame becomes new run lines. Any refusal (a picture the checks refuse, a
// frame that cannot be a delta) shows its message and changes nothing. On success the deltas are
// replaced through setDeltaRuns.
DeltaSetImport importDeltaSet(StyleSession& session, Platform& platform,
                              const std::filesystem::path& file, bool clean);

// The session edit behind the import: gives delta table entries new run lines and marks the pages
// and deltas changed, so that the save sequence rewrites the delta store. Entries outside the
// table are left alone (false).
bool setDeltaRuns(StyleSession& session,
                  std::vector<std::pair<int, std::vector<RunLine>>> replacements);

} // namespace torquil
