#pragma once

#include <QList>
#include <QString>

namespace fb::app {

// One beat of a story-structure template: where it should fall, in percent of the story.
struct Beat
{
    QString name;
    QString description;
    double position = 0;
};

// A built-in story-structure template the beat sheet plots against.
struct BeatTemplate
{
    QString id;
    QString displayName;
    QString description;
    QList<Beat> beats;
};

// The four built-in templates, in the order tools list them.
const QList<BeatTemplate> &beatTemplates();

// The template with this id (exactly as stored); null when this build does not know it.
const BeatTemplate *beatTemplateById(const QString &id);

// The template an agent names by id or display name, compared trimmed and case-insensitively;
// null when none matches.
const BeatTemplate *findBeatTemplate(const QString &name);

// The beat of a template named so, compared trimmed and case-insensitively; null when none.
const Beat *findBeat(const BeatTemplate &beatTemplate, const QString &name);

} // namespace fb::app
