#include "tools/common/documentlookup.h"

#include "core/document.h"
#include "core/ids.h"
#include "core/project.h"
#include "tools/common/arguments.h"
#include "tools/common/bodytext.h"

#include <QStringList>

namespace fb::app {

namespace {

QString excludedMessage(const QString &title)
{
    return QStringLiteral("'%1' is excluded from AI.").arg(title);
}

QString candidateLine(const core::Document &document)
{
    return QStringLiteral("- %1 (%2, %3 words)")
        .arg(core::idText(document.id()), core::enumName(document.kind()),
             QString::number(documentWordCount(document)));
}

} // namespace

bool isWithheldDocument(const core::Project &project, const core::Document &document)
{
    // The walk up the parents stops at the top, at a missing parent or after as many steps as
    // there are objects, so damaged data cannot make it loop.
    const core::Document *current = &document;
    for (qsizetype steps = 0; current && steps <= project.objectCount(); ++steps) {
        if (current->isAiExcluded())
            return true;
        if (current->parentId().isNull())
            return false;
        current = project.objectAs<core::Document>(current->parentId());
    }
    return false;
}

bool sameTitle(const QString &a, const QString &b)
{
    return a.trimmed().compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}

Result<core::Document *> resolveDocument(core::Project &project, const QString &title,
                                         const QString &id, const QString &label)
{
    if (!id.isEmpty()) {
        const QUuid uuid = core::idFromText(id);
        core::Document *document = uuid.isNull() ? nullptr : project.objectAs<core::Document>(uuid);
        if (!document)
            return makeError(QStringLiteral("No document with id '%1' exists.").arg(id));
        if (isWithheldDocument(project, *document))
            return makeError(excludedMessage(document->title()));
        return document;
    }
    if (title.isEmpty())
        return makeError(QStringLiteral("Provide the %1 (or its id).").arg(label));

    const QString key = title.trimmed().toLower();
    bool sawExcluded = false;
    std::vector<core::Document *> candidates;
    for (core::Document *document : project.objectsOfType<core::Document>()) {
        if (document->title().trimmed().toLower() != key)
            continue;
        if (isWithheldDocument(project, *document))
            sawExcluded = true;
        else
            candidates.push_back(document);
    }
    if (candidates.size() == 1)
        return candidates.front();
    if (candidates.empty()) {
        return makeError(sawExcluded ? excludedMessage(title)
                                     : QStringLiteral("No document titled '%1' exists.").arg(title));
    }
    QStringList lines;
    for (const core::Document *document : candidates)
        lines.append(candidateLine(*document));
    return makeError(
        QStringLiteral("More than one document is titled '%1'; pass \"id\" to choose one:\n%2")
            .arg(title, lines.join(u'\n')));
}

Result<core::Document *> resolveDocument(core::Project &project, const QJsonObject &arguments)
{
    return resolveDocument(project, stringArgument(arguments, QStringLiteral("title")),
                           stringArgument(arguments, QStringLiteral("id")));
}

} // namespace fb::app
