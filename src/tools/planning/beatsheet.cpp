#include "core/commands/command.h"
#include "core/commands/projectcommands.h"
#include "core/document.h"
#include "core/project.h"
#include "storage/workspace.h"
#include "tools/common/change.h"
#include "tools/common/documentlookup.h"
#include "tools/common/toolarguments.h"
#include "tools/common/toolcontext.h"
#include "tools/common/visibility.h"
#include "tools/planning/beattemplates.h"
#include "tools/planning/planninghandlers.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

bool isAssignmentOf(const core::BeatAssignment &assignment, const Beat &beat)
{
    return assignment.beatName.trimmed().compare(beat.name, Qt::CaseInsensitive) == 0;
}

QString unknownTemplateMessage(const QString &id)
{
    return u"The applied structure template '%1' is not known to this build."_s.arg(id);
}

// The applied template, or the refusal when there is none or this build does not know it.
Result<const BeatTemplate *> appliedTemplate(const core::BeatSheet &sheet, const QString &noneYet)
{
    if (sheet.templateId.isEmpty())
        return makeError(noneYet);
    const BeatTemplate *applied = beatTemplateById(sheet.templateId);
    if (!applied)
        return makeError(unknownTemplateMessage(sheet.templateId));
    return applied;
}

// The scene mapped to a beat: the first assignment of the beat whose document still exists. A
// beat whose scene was deleted is unfilled.
const core::Document *assignedScene(const core::Project &project, const core::BeatSheet &sheet,
                                    const Beat &beat)
{
    for (const core::BeatAssignment &assignment : sheet.assignments) {
        if (!isAssignmentOf(assignment, beat))
            continue;
        if (const auto *document = project.objectAs<core::Document>(assignment.documentId))
            return document;
    }
    return nullptr;
}

QString templateChoices()
{
    QStringList choices;
    for (const BeatTemplate &beatTemplate : beatTemplates())
        choices.append(u"%1 (%2)"_s.arg(beatTemplate.id, beatTemplate.displayName));
    return choices.join(u", "_s);
}

QStringList beatNames(const BeatTemplate &beatTemplate)
{
    QStringList names;
    for (const Beat &beat : beatTemplate.beats)
        names.append(beat.name);
    return names;
}

// The beat's assignments after the call: the beat's first assignment gives way to the new one,
// in its place so the others keep their order, and any further assignment of the beat is
// dropped, since a beat holds one scene. A null document clears the beat.
QList<core::BeatAssignment> reassigned(const QList<core::BeatAssignment> &assignments,
                                       const Beat &beat, const QUuid &documentId)
{
    QList<core::BeatAssignment> result;
    bool placed = documentId.isNull();
    for (const core::BeatAssignment &assignment : assignments) {
        if (!isAssignmentOf(assignment, beat)) {
            result.append(assignment);
        } else if (!placed) {
            result.append({beat.name, documentId});
            placed = true;
        }
    }
    if (!placed)
        result.append({beat.name, documentId});
    return result;
}

} // namespace

QString applyTemplateNeedsTemplate()
{
    return u"apply_beat_template needs \"template\" (a structure id or name)."_s;
}

QString assignBeatNeedsBeat()
{
    return u"assign_beat needs \"beat\" (the name of a beat of the applied template)."_s;
}

McpToolResult getBeatSheet(ToolContext &context, const ToolArguments &)
{
    const core::Project &project = context.workspace().project();
    const core::BeatSheet &sheet = project.beatSheet();
    const Result<const BeatTemplate *> applied = appliedTemplate(
        sheet, u"No beat sheet applied yet. Apply a structure template in the desktop app's Beat "
               "Sheet dock."_s);
    if (!applied)
        return McpToolResult::failure(applied.error());

    const Visibility &visibility = context.visibility();
    QStringList lines{u"## Beat sheet: %1"_s.arg((*applied)->displayName)};
    int filled = 0;
    for (const Beat &beat : (*applied)->beats) {
        QString scene;
        if (const core::Document *document = assignedScene(project, sheet, beat)) {
            ++filled;
            scene = visibility.isVisible(*document) ? u"'%1'"_s.arg(document->title())
                                                    : u"(a document excluded from AI)"_s;
        } else {
            scene = u"unfilled -- %1"_s.arg(beat.description);
        }
        lines.append(u"- **%1** (%2%): %3"_s.arg(beat.name, QString::number(beat.position), scene));
    }
    // A blank line keeps the total out of the last list item.
    lines.append(QString());
    lines.append(u"%1 of %2 beats filled."_s.arg(filled).arg((*applied)->beats.size()));
    return McpToolResult::success(lines.join(u'\n'));
}

McpToolResult applyBeatTemplate(ToolContext &context, const ToolArguments &arguments)
{
    const QString name = arguments.trimmed(u"template"_s);
    if (name.isEmpty())
        return McpToolResult::failure(applyTemplateNeedsTemplate());
    const BeatTemplate *chosen = findBeatTemplate(name);
    if (!chosen) {
        return McpToolResult::failure(
            u"Unknown structure template '%1'. Choose one of: %2."_s.arg(name, templateChoices()));
    }
    core::Project &project = context.workspace().project();
    const core::BeatSheet &current = project.beatSheet();
    if (current.templateId == chosen->id) {
        return McpToolResult::success(
            u"The '%1' beat sheet is already applied; nothing changed."_s.arg(chosen->displayName));
    }

    // Scenes stay mapped to the beats the new template shares with the old one ("Midpoint"
    // from three-act to Save the Cat); the rest of the mapping has nowhere to go.
    core::BeatSheet sheet;
    sheet.templateId = chosen->id;
    for (const core::BeatAssignment &assignment : current.assignments) {
        if (findBeat(*chosen, assignment.beatName))
            sheet.assignments.append(assignment);
    }
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: apply beat template"_s);
    change->append(std::make_unique<core::SetBeatSheetCommand>(project, sheet));
    return applyChange(context, std::move(change),
                       u"Applied the '%1' beat sheet (%2 beats). Map scenes with assign_beat."_s
                           .arg(chosen->displayName)
                           .arg(chosen->beats.size()));
}

McpToolResult assignBeat(ToolContext &context, const ToolArguments &arguments)
{
    const QString beatName = arguments.trimmed(u"beat"_s);
    if (beatName.isEmpty())
        return McpToolResult::failure(assignBeatNeedsBeat());
    core::Project &project = context.workspace().project();
    const core::BeatSheet &current = project.beatSheet();
    const Result<const BeatTemplate *> applied = appliedTemplate(
        current, u"No beat sheet is applied yet; apply a structure template in the desktop app's "
                 "Beat Sheet dock first."_s);
    if (!applied)
        return McpToolResult::failure(applied.error());
    const Beat *beat = findBeat(**applied, beatName);
    if (!beat) {
        return McpToolResult::failure(
            u"'%1' is not a beat of the applied template '%2'. Its beats are: %3."_s
                .arg(beatName, (*applied)->displayName, beatNames(**applied).join(u", "_s)));
    }

    // Clearing takes an explicit "": a call that forgets the scene must not empty the beat.
    if (!arguments.has(u"document"_s) && !arguments.has(u"document_id"_s)) {
        return McpToolResult::failure(
            u"assign_beat needs \"document\" (a scene's title, or \"\" to clear the beat)."_s);
    }
    const QString title = arguments.trimmed(u"document"_s);
    const QString id = arguments.trimmed(u"document_id"_s);
    const core::Document *document = nullptr;
    if (!title.isEmpty() || !id.isEmpty()) {
        const Result<core::Document *> resolved = resolveDocument(context, title, id,
                                                                  u"document \"document\""_s);
        if (!resolved)
            return McpToolResult::failure(resolved.error());
        document = *resolved;
    }

    core::BeatSheet sheet = current;
    sheet.assignments = reassigned(current.assignments, *beat, document ? document->id() : QUuid());
    const QString text = document ? u"Assigned '%1' to the '%2' beat."_s.arg(document->title(),
                                                                             beat->name)
                                  : u"Cleared the '%1' beat."_s.arg(beat->name);
    // A beat that already holds that scene, or is already empty, changes nothing.
    if (sheet == current)
        return McpToolResult::success(text);
    auto change = std::make_unique<core::CompositeCommand>(u"MCP: assign beat"_s);
    change->append(std::make_unique<core::SetBeatSheetCommand>(project, sheet));
    return applyChange(context, std::move(change), text);
}

} // namespace fb::app
