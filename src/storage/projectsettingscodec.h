#pragma once

#include <QJsonObject>

namespace fb::core {
class Project;
}

namespace fb::app {

// The stored form of the project-wide settings, the file "project.json". The timeline display
// settings ("timelineView", "timelineViewPresets") are carried through as read.

// Fills the project's settings from the stored object; an absent key leaves its setting as
// it is (a new project's default), and unknown keys become the project's preserved properties.
void readProjectSettings(const QJsonObject &json, core::Project &project);

QJsonObject projectSettingsToJson(const core::Project &project);

} // namespace fb::app
