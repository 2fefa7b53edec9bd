#pragma once
// The numbered command groups that switch menu entries and toolbar buttons on and off together.

#include <QHash>
#include <QString>
#include <QStringList>

namespace torquil {

struct GroupMembers {
    QStringList actions; // menu control names
    QStringList buttons; // toolbar keys
    bool alwaysOff = false;
};

// Members of groups 1..9; any other number has none.
[[nodiscard]] const GroupMembers& commandGroupMembers(int group);

// What setCommandGroup has switched: a control that belongs to a group is on only while its
// group is; a control of no group is always on as far as the groups go.
class CommandGroups {
public:
    // Group 0 runs groups 1 to 9 with the same flag; numbers above 9 (or below 0) change nothing.
    void set(int group, bool enabled);
    [[nodiscard]] bool isOn(const QString& control) const;
    [[nodiscard]] bool belongsToGroup(const QString& control) const;

private:
    QHash<QString, bool> on_;
};

} // namespace torquil
