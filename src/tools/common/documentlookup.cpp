#include "tools/common/documentlookup.h"

#include "core/document.h"
#include "core/ids.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/bodytext.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString excludedMessage(const QString &title)
{
    return u"'%1' is excluded from AI."_s.arg(title);
}

QString candidateLine(const core::Document &document)
{
    return u"- %1 (%2, %3 words)"_s.arg(core::idText(document.id()),
                                        core::enumName(document.kind()),
                                        QString::number(documentWordCount(document)));
}

} // namespace

bool sameTitle(const QString &a, const QString &b)
{
    return a.trimmed().compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}

Result<core::Document *> resolveDocument(ToolContext &context, const QString &title,
                                         const QString &id, const QString &label)
{
    core::Project &project = context.workspace().project();
    const Visibility &visibility = context.visibility();
    if (!id.isEmpty()) {
        const QUuid uuid = core::idFromText(id);
        core::Document *document = uuid.isNull() ? nullptr : project.objectAs<core::Document>(uuid);
        if (!document)
            return makeError(u"No document with id '%1' exists."_s.arg(id));
        if (!visibility.isVisible(*document))
            return makeError(excludedMessage(document->title()));
        return document;
    }
    if (title.isEmpty())
        return makeError(u"Provide the %1 (or its id)."_s.arg(label));

    const QString key = title.trimmed().toLower();
    bool sawExcluded = false;
    std::vector<core::Document *> candidates;
    for (core::Document *document : project.objectsOfType<core::Document>()) {
        if (document->title().trimmed().toLower() != key)
            continue;
        if (!visibility.isVisible(*document))
            sawExcluded = true;
        else
            candidates.push_back(document);
    }
    if (candidates.size() == 1)
        return candidates.front();
    if (candidates.empty()) {
        return makeError(sawExcluded ? excludedMessage(title)
                                     : u"No document titled '%1' exists."_s.arg(title));
    }
    QStringList lines;
    for (const core::Document *document : candidates)
        lines.append(candidateLine(*document));
    return makeError(u"More than one document is titled '%1'; pass \"id\" to choose one:\n%2"_s
                         .arg(title, lines.join(u'\n')));
}

Result<core::Document *> resolveDocument(ToolContext &context, const ToolArguments &arguments)
{
    return resolveDocument(context, arguments.text(u"title"_s), arguments.text(u"id"_s));
}

} // namespace fb::app
