#include "app/command_groups.h"

#include <array>

namespace torquil {

const GroupMembers& commandGroupMembers(int group) {
    static const std::array<GroupMembers, 10> groups = {{
        {},
        {{"mnuOpen"}, {"open"}},
        {{"mnuSaveBlock"}, {"save"}},
        {{"mnuFindCar", "mnuCarInfo"}, {"find"}},
        {{"mnuSprite"}, {"exportsprite", "importsprite"}},
        {{"mnuEditCar"}, {"carinfo"}},
        {{"mnuExportDeltas0", "mnuExportDeltas1", "mnuImportDeltas", "mnuViewDeltas0",
          "mnuViewDeltas1"},
         {"exportdeltasdirty", "exportdeltasclean", "importdeltas"}},
        {{"mnuBuildGC3"}, {}},
        {{"mnuLoadBMP"}, {"loadbmp"}},
        {{"mnuLoadGC3"}, {"loadgc3"}},
    }};
    static const GroupMembers none;
    return group >= 1 && group <= 9 ? groups[static_cast<std::size_t>(group)] : none;
}

void CommandGroups::set(int group, bool enabled) {
    if (group == 0) {
        for (int g = 1; g <= 9; ++g) set(g, enabled);
        return;
    }
    if (group < 1 || group > 9) return;
    const GroupMembers& members = commandGroupMembers(group);
    const bool on = enabled && !members.alwaysOff;
    for (const QString& name : members.actions) on_[name] = on;
    for (const QString& key : members.buttons) on_[key] = on;
}

bool CommandGroups::isOn(const QString& control) const {
    auto it = on_.constFind(control);
    if (it != on_.constEnd()) return *it;
    // Before any set(): a group member starts off, everything else on.
    return !belongsToGroup(control);
}

bool CommandGroups::belongsToGroup(const QString& control) const {
    for (int g = 1; g <= 9; ++g) {
        const GroupMembers& m = commandGroupMembers(g);
        if (m.actions.contains(control) || m.buttons.contains(control)) return true;
    }
    return false;
}

} // namespace torquil
