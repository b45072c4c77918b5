#include "core/commands/command.h"
#include "core/commands/documentcommands.h"
#include "core/commands/projectcommands.h"
#include "core/contentobjects.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/documentlookup.h"
#include "tools/common/objectlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"
#include "tools/planning/planninghandlers.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <optional>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

bool sameName(const QString &a, const QString &b)
{
    return a.trimmed().compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}

// The position of the thread an agent names in the project's list, compared trimmed and
// ignoring case, as every name lookup compares.
Result<qsizetype> findThread(const QList<core::PlotThread> &threads, const QString &name)
{
    std::optional<qsizetype> found;
    qsizetype matches = 0;
    for (qsizetype i = 0; i < threads.size(); ++i) {
        if (sameName(threads.at(i).name, name)) {
            found = found.value_or(i);
            ++matches;
        }
    }
    if (matches > 1) {
        return makeError(u"The name '%1' matches %2 plot threads; rename one in the desktop app so "
                         "the name is unique."_s.arg(name, QString::number(matches)));
    }
    if (!found)
        return makeError(u"No plot thread named '%1' exists."_s.arg(name));
    return *found;
}

bool isThreadNameTaken(const QList<core::PlotThread> &threads, const QString &name,
                       const QUuid &renamed = QUuid())
{
    return std::any_of(threads.cbegin(), threads.cend(), [&](const core::PlotThread &thread) {
        return thread.id != renamed && sameName(thread.name, name);
    });
}

QString nameTakenMessage(const QString &name)
{
    return u"A plot thread named '%1' already exists; choose a distinct name so each thread stays "
           "addressable."_s.arg(name);
}

// A thread's name: trimmed, one line, not blank (`blank` is the refusal then), not another
// thread's.
Result<QString> readThreadName(const ToolArguments &arguments, const QString &key,
                               const QString &blank, const QList<core::PlotThread> &threads,
                               const QUuid &renamed = QUuid())
{
    const QString name = arguments.trimmed(key);
    if (name.isEmpty())
        return makeError(blank);
    if (const Result<void> line = checkSingleLine(key, name); !line)
        return makeError(line.error());
    if (isThreadNameTaken(threads, name, renamed))
        return makeError(nameTakenMessage(name));
    return name;
}

// "" keeps the default colour; anything else must be a hex swatch "#RRGGBB", in either case.
Result<QString> readColor(const ToolArguments &arguments)
{
    static const QRegularExpression swatch(u"^#[0-9A-Fa-f]{6}$"_s);
    const QString color = arguments.trimmed(u"color"_s);
    if (!color.isEmpty() && !swatch.match(color).hasMatch()) {
        return makeError(u"The color '%1' was not understood; use a CSS hex swatch like "
                         "\"#c0392b\" (or \"\" for the default)."_s.arg(color));
    }
    return color;
}

// The entity a thread becomes the arc of; "" binds none. Any entity the agent may see will do,
// one of a mounted library's included. An id stands for the entity it names: it is how the agent
// settles a name that the lookup finds ambiguous, whose refusal lists the candidates' ids.
Result<QUuid> readCharacter(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(u"character"_s);
    if (name.isEmpty())
        return QUuid();
    ObjectQuery query;
    if (parseObjectId(name).isNull())
        query.name = name;
    else
        query.id = name;
    query.entitiesOnly = true;
    const Result<LocatedObject> found = findObject(context, query);
    if (!found)
        return makeError(found.error());
    return found->object->id();
}

// Every entity of the open project and its mounted libraries by id, gathered once for a listing
// that names many characters.
QHash<QUuid, const core::ContentObject *> entitiesById(ToolContext &context)
{
    QHash<QUuid, const core::ContentObject *> entities;
    forEachGatheredObject(context.workspace(), [&](const LocatedObject &located) {
        // The open project comes first and wins over a library holding the same id.
        if (located.object->type() == core::ObjectType::Entity
            && !entities.contains(located.object->id()))
            entities.insert(located.object->id(), located.object);
    });
    return entities;
}

// Who a character arc belongs to, as the listing says it: never the name of a character the
// agent may not see.
QString characterLabel(ToolContext &context,
                       const QHash<QUuid, const core::ContentObject *> &entities, const QUuid &id)
{
    const core::ContentObject *character = entities.value(id);
    if (!character)
        return u"(missing character)"_s;
    if (!context.visibility().isVisible(*character))
        return u"(a character excluded from AI)"_s;
    return core::objectTitle(*character);
}

// How many scenes the agent may see are tagged with each thread. Scenes withheld from the agent
// are not counted, here or when a deletion reports the scenes it untagged, so a count never
// tells of a scene the agent cannot read.
QHash<QUuid, int> visibleTagCounts(ToolContext &context)
{
    QHash<QUuid, int> counts;
    const Visibility &visibility = context.visibility();
    for (const core::Document *document :
         context.workspace().project().objectsOfType<core::Document>()) {
        if (!visibility.isVisible(*document))
            continue;
        const QList<QUuid> &ids = document->plotThreadIds();
        for (const QUuid &id : QSet<QUuid>(ids.cbegin(), ids.cend()))
            ++counts[id];
    }
    return counts;
}

QString threadLine(ToolContext &context, const QHash<QUuid, const core::ContentObject *> &entities,
                   const core::PlotThread &thread, int taggedScenes)
{
    QString line = u"- **%1**"_s.arg(thread.name);
    if (!thread.color.isEmpty())
        line += u" (%1)"_s.arg(thread.color);
    if (!thread.characterId.isNull())
        line += u" -- arc of %1"_s.arg(characterLabel(context, entities, thread.characterId));
    line += u" -- %1 tagged scene(s)"_s.arg(taggedScenes);
    if (!thread.description.isEmpty())
        line += u" -- %1"_s.arg(thread.description);
    return line;
}

} // namespace

QString createThreadNeedsName()
{
    return u"create_plot_thread needs a non-empty \"name\"."_s;
}

QString updateThreadNeedsThread()
{
    return u"update_plot_thread needs \"thread\" (its name)."_s;
}

QString nonEmptyNewName()
{
    return u"\"new_name\" must be a non-empty string."_s;
}

QString setThreadsNeedsDocument()
{
    return u"set_document_threads needs \"document\" (its title)."_s;
}

QString setThreadsNeedsThreads()
{
    return u"set_document_threads needs a \"threads\" array of thread names ([] clears the "
           "tags)."_s;
}

QString deleteThreadNeedsThread()
{
    return u"delete_plot_thread needs \"thread\" (its name)."_s;
}

McpToolResult listPlotThreads(ToolContext &context, const ToolArguments &)
{
    const QList<core::PlotThread> &threads = context.workspace().project().plotThreads();
    if (threads.isEmpty())
        return McpToolResult::success(u"No plot threads yet."_s);
    const QHash<QUuid, int> counts = visibleTagCounts(context);
    const QHash<QUuid, const core::ContentObject *> entities = entitiesById(context);
    QStringList lines{u"## Plot threads (%1)"_s.arg(threads.size())};
    for (const core::PlotThread &thread : threads)
        lines.append(threadLine(context, entities, thread, counts.value(thread.id)));
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult createPlotThread(ToolContext &context, const ToolArguments &arguments)
{
    core::Project &project = context.workspace().project();
    QList<core::PlotThread> threads = project.plotThreads();
    const Result<QString> name = readThreadName(arguments, u"name"_s, createThreadNeedsName(),
                                                threads);
    if (!name)
        return McpToolResult::failure(name.error());
    const Result<QString> color = readColor(arguments);
    if (!color)
        return McpToolResult::failure(color.error());
    const Result<QUuid> character = readCharacter(context, arguments);
    if (!character)
        return McpToolResult::failure(character.error());

    core::PlotThread thread;
    thread.id = QUuid::createUuid();
    thread.name = *name;
    thread.description = arguments.trimmed(u"description"_s);
    thread.characterId = *character;
    thread.color = *color;
    threads.append(thread);
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: create plot thread"_s);
    change->append(std::make_unique<core::SetPlotThreadsCommand>(project, threads));
    return applyChange(context, std::move(change),
                       u"Created the %1 '%2'."_s.arg(character->isNull() ? u"plot thread"_s
                                                                         : u"character arc"_s,
                                                     *name));
}

McpToolResult updatePlotThread(ToolContext &context, const ToolArguments &arguments)
{
    const QString wanted = arguments.trimmed(u"thread"_s);
    if (wanted.isEmpty())
        return McpToolResult::failure(updateThreadNeedsThread());
    core::Project &project = context.workspace().project();
    QList<core::PlotThread> threads = project.plotThreads();
    const Result<qsizetype> index = findThread(threads, wanted);
    if (!index)
        return McpToolResult::failure(index.error());
    core::PlotThread &thread = threads[*index];

    QStringList aspects;
    if (arguments.has(u"new_name"_s)) {
        const Result<QString> name = readThreadName(arguments, u"new_name"_s, nonEmptyNewName(),
                                                    threads, thread.id);
        if (!name)
            return McpToolResult::failure(name.error());
        thread.name = *name;
        aspects.append(u"name"_s);
    }
    if (arguments.has(u"color"_s)) {
        const Result<QString> color = readColor(arguments);
        if (!color)
            return McpToolResult::failure(color.error());
        thread.color = *color;
        aspects.append(u"color"_s);
    }
    if (arguments.has(u"description"_s)) {
        thread.description = arguments.trimmed(u"description"_s);
        aspects.append(u"description"_s);
    }
    if (arguments.has(u"character"_s)) {
        const Result<QUuid> character = readCharacter(context, arguments);
        if (!character)
            return McpToolResult::failure(character.error());
        thread.characterId = *character;
        aspects.append(u"character"_s);
    }
    if (aspects.isEmpty()) {
        return McpToolResult::failure(u"update_plot_thread changed nothing; provide at least one "
                                      "of new_name, color, description, or character."_s);
    }

    const QString text = u"Updated the plot thread '%1' (%2)."_s.arg(thread.name,
                                                                     aspects.join(u", "_s));
    // A thread that already holds every given value changes nothing, and no step is recorded.
    if (threads == project.plotThreads())
        return McpToolResult::success(text);
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: update plot thread"_s);
    change->append(std::make_unique<core::SetPlotThreadsCommand>(project, threads));
    return applyChange(context, std::move(change), text);
}

McpToolResult setDocumentThreads(ToolContext &context, const ToolArguments &arguments)
{
    const QString title = arguments.trimmed(u"document"_s);
    const QString id = arguments.trimmed(u"document_id"_s);
    if (title.isEmpty() && id.isEmpty())
        return McpToolResult::failure(setThreadsNeedsDocument());
    if (!arguments.has(u"threads"_s))
        return McpToolResult::failure(setThreadsNeedsThreads());
    const Result<core::Document *> resolved = resolveDocument(context, title, id,
                                                              u"document \"document\""_s);
    if (!resolved)
        return McpToolResult::failure(resolved.error());
    core::Document &document = **resolved;

    const QList<core::PlotThread> &threads = context.workspace().project().plotThreads();
    QList<QUuid> tags;
    QStringList names;
    for (const QString &name : arguments.textList(u"threads"_s)) {
        if (name.trimmed().isEmpty())
            return McpToolResult::failure(setThreadsNeedsThreads());
        const Result<qsizetype> index = findThread(threads, name.trimmed());
        if (!index)
            return McpToolResult::failure(index.error());
        const core::PlotThread &thread = threads.at(*index);
        // A thread named twice is tagged once.
        if (tags.contains(thread.id))
            continue;
        tags.append(thread.id);
        names.append(thread.name);
    }

    const QString text = tags.isEmpty()
                             ? u"Cleared the plot-thread tags on '%1'."_s.arg(document.title())
                             : u"Tagged '%1' with %2 plot thread(s): %3."_s.arg(document.title(),
                                                                                QString::number(
                                                                                    tags.size()),
                                                                                names.join(u", "_s));
    if (tags == document.plotThreadIds())
        return McpToolResult::success(text);
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: set document threads"_s);
    change->append(std::make_unique<core::SetDocumentPlotThreadsCommand>(document, tags));
    return applyChange(context, std::move(change), text);
}

McpToolResult deletePlotThread(ToolContext &context, const ToolArguments &arguments)
{
    const QString wanted = arguments.trimmed(u"thread"_s);
    if (wanted.isEmpty())
        return McpToolResult::failure(deleteThreadNeedsThread());
    core::Project &project = context.workspace().project();
    QList<core::PlotThread> threads = project.plotThreads();
    const Result<qsizetype> index = findThread(threads, wanted);
    if (!index)
        return McpToolResult::failure(index.error());
    const core::PlotThread removed = threads.takeAt(*index);

    auto change = std::make_unique<core::CompositeCommand>(u"MCP: delete plot thread"_s);
    change->append(std::make_unique<core::SetPlotThreadsCommand>(project, threads));
    // Every scene loses the tag, those withheld from the agent too, so none is left pointing at
    // a thread that no longer exists; the step restores each scene's tags on undo.
    const Visibility &visibility = context.visibility();
    int untaggedVisible = 0;
    for (core::Document *document : project.objectsOfType<core::Document>()) {
        if (!document->plotThreadIds().contains(removed.id))
            continue;
        QList<QUuid> tags = document->plotThreadIds();
        tags.removeAll(removed.id);
        change->append(std::make_unique<core::SetDocumentPlotThreadsCommand>(*document, tags));
        if (visibility.isVisible(*document))
            ++untaggedVisible;
    }
    QString text = u"Deleted the plot thread '%1'."_s.arg(removed.name);
    if (untaggedVisible > 0)
        text += u" Removed it from %1 tagged scene(s)."_s.arg(untaggedVisible);
    return applyChange(context, std::move(change), text);
}

} // namespace fb::app
