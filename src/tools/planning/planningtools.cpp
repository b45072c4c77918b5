#include "tools/planning/planninghandlers.h"
#include "tools/registration.h"

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

// Priority and submission type are read case-insensitively and trimmed ("URGENT " is urgent), so
// they are published as plain strings: a schema "enum" would let a strict client refuse a value
// the tool accepts.
const QString priorityNames = u"low, normal, high, or urgent."_s;
const QString submissionTypeNames = u"agent, publisher, magazine, contest, or other."_s;

// A scene is named by its title, or by its id when several documents share the title (the
// ambiguity refusal lists their ids).
ArgumentDeclaration documentId()
{
    return optionalText(u"document_id"_s, u"The document's id, when several documents share the "
                                          "title; used instead of \"document\" when given."_s);
}

QList<ArgumentDeclaration> taskFields()
{
    return {
        optionalText(u"submitted_to"_s, u"Submission tracker: who the work was sent to."_s),
        optionalText(u"submission_type"_s, submissionTypeNames),
        optionalText(u"submitted_on"_s, u"Date submitted (YYYY-MM-DD)."_s),
        optionalText(u"submission_notes"_s, u"Submission notes (response, terms, fee)."_s),
    };
}

} // namespace

// The planning aids: tasks on kanban boards, then plot threads and character arcs, then the
// story-structure beat sheet.
std::vector<ToolDefinition> planningTools()
{
    return {
        {u"list_tasks"_s,
         u"Lists tasks grouped by kanban board: done state, status column, priority, and due "
         "date. Optional board filter; pass include_done=false to hide completed tasks."_s,
         {optionalText(u"board"_s, u"Only this board's tasks."_s),
          optionalBool(u"include_done"_s, u"Include completed tasks (default true)."_s)},
         listTasks},
        {u"create_task"_s,
         u"Creates a task (unique title) with optional description, status (board column), "
         "board, priority (low|normal|high|urgent), due date (YYYY-MM-DD), and -- for a "
         "submission-tracker task -- submitted_to / submission_type / submitted_on / "
         "submission_notes."_s,
         QList<ArgumentDeclaration>{
             withTypeRefusal(requiredText(u"title"_s,
                                          u"The new task's title (must not exist yet)."_s),
                             createTaskNeedsTitle()),
             optionalText(u"description"_s, u"Free-text details."_s),
             withTypeRefusal(optionalText(u"status"_s, u"The board column, e.g. \"To Do\"."_s),
                             nonEmptyStatus()),
             optionalText(u"board"_s, u"The board to file it on (default board when absent)."_s),
             optionalText(u"priority"_s, priorityNames),
             optionalText(u"due"_s, u"YYYY-MM-DD."_s),
         } + taskFields(),
         createTask},
        {u"update_task"_s,
         u"Updates one task (addressed by title). Sparse: only the provided keys change -- "
         "new_title, description, status (board column), board (\"\" = the default board), done, "
         "priority (low|normal|high|urgent), due (YYYY-MM-DD, \"\" clears). For a "
         "submission-tracker task the submission-pipeline fields submitted_to / submission_type "
         "/ submitted_on / submission_notes are set here too (the response-due date IS \"due\" "
         "and the pipeline stage IS \"status\")."_s,
         {withTypeRefusal(requiredText(u"task"_s, u"The task's current title."_s),
                          updateTaskNeedsTask()),
          withTypeRefusal(optionalText(u"new_title"_s,
                                       u"Rename the task to this title (must not exist yet)."_s),
                          nonEmptyNewTitle()),
          optionalText(u"description"_s, u"New free-text details."_s),
          withTypeRefusal(optionalText(u"status"_s, u"The new board column, e.g. \"Doing\"."_s),
                          nonEmptyStatus()),
          optionalText(u"board"_s, u"The board to move the task to."_s),
          withTypeRefusal(optionalBool(u"done"_s, u"The new completion state."_s),
                          doneMustBeBoolean()),
          optionalText(u"priority"_s, priorityNames),
          optionalText(u"due"_s, u"YYYY-MM-DD, or \"\" to clear."_s),
          optionalText(u"submitted_to"_s,
                       u"Submission tracker: who the work was sent to (empty clears)."_s),
          optionalText(u"submission_type"_s, submissionTypeNames),
          optionalText(u"submitted_on"_s, u"Date submitted (YYYY-MM-DD, \"\" clears)."_s),
          optionalText(u"submission_notes"_s,
                       u"Submission notes (response, terms, fee; empty clears)."_s)},
         updateTask},
        {u"list_plot_threads"_s,
         u"Lists the plot threads and character arcs: colour, the character whose arc a thread "
         "is, how many scenes tag it, and its description."_s,
         {},
         listPlotThreads},
        {u"create_plot_thread"_s,
         u"Creates a plot thread or character arc (unique name), with optional color "
         "(\"#rrggbb\"), description, and character (an entity name that makes the thread that "
         "character's arc)."_s,
         {withTypeRefusal(requiredText(u"name"_s, u"The new thread's name (must not exist yet)."_s),
                          createThreadNeedsName()),
          optionalText(u"color"_s, u"A hex swatch \"#rrggbb\"; empty for the default colour."_s),
          optionalText(u"description"_s, u"What the thread is about."_s),
          optionalText(u"character"_s,
                       u"The entity whose arc this is (name, alias or id); omit for a plain plot "
                       "thread."_s)},
         createPlotThread},
        {u"update_plot_thread"_s,
         u"Updates one plot thread (addressed by name). Sparse: only the provided keys change -- "
         "new_name, color (\"\" = the default colour), description, character (\"\" makes it a "
         "plain plot thread again)."_s,
         {withTypeRefusal(requiredText(u"thread"_s, u"The thread's current name."_s),
                          updateThreadNeedsThread()),
          withTypeRefusal(optionalText(u"new_name"_s,
                                       u"Rename the thread to this name (must not exist yet)."_s),
                          nonEmptyNewName()),
          optionalText(u"color"_s, u"A hex swatch \"#rrggbb\", or \"\" for the default colour."_s),
          optionalText(u"description"_s, u"The new description (empty clears it)."_s),
          optionalText(u"character"_s,
                       u"The entity whose arc this is (name, alias or id), or \"\" to unbind it."_s)},
         updatePlotThread},
        {u"set_document_threads"_s,
         u"Tags a scene (document) with the plot threads it advances, by thread name. The list "
         "REPLACES the scene's current threads; pass [] to clear them."_s,
         {withTypeRefusal(requiredText(u"document"_s, u"The scene's title (case-insensitive)."_s),
                          setThreadsNeedsDocument()),
          documentId(),
          withElementRefusal(
              withTypeRefusal(requiredTextList(u"threads"_s,
                                               u"The names of every thread the scene advances; "
                                               "[] clears the tags."_s),
                              setThreadsNeedsThreads()),
              setThreadsNeedsThreads())},
         setDocumentThreads},
        {u"delete_plot_thread"_s,
         u"Removes a plot thread (or character arc) from the project and untags every scene that "
         "referenced it, so no scene is left pointing at a deleted thread."_s,
         {withTypeRefusal(requiredText(u"thread"_s, u"The thread's name."_s),
                          deleteThreadNeedsThread())},
         deletePlotThread},
        {u"get_beat_sheet"_s,
         u"Shows the applied story-structure beat sheet: each beat, its target position in the "
         "story, and the scene assigned to it (or that it is still unfilled)."_s,
         {},
         getBeatSheet},
        {u"apply_beat_template"_s,
         u"Chooses the story-structure template the project plots against -- three-act "
         "(three-act), the hero's journey (heros-journey), Save the Cat! (save-the-cat), or the "
         "Snowflake method (snowflake) -- by id or display name."_s,
         {withTypeRefusal(requiredText(u"template"_s,
                                       u"The template's id or display name (case-insensitive)."_s),
                          applyTemplateNeedsTemplate())},
         applyBeatTemplate},
        {u"assign_beat"_s,
         u"Assigns a document (scene) to one beat of the applied structure template, or clears "
         "the beat with an empty \"document\"."_s,
         {withTypeRefusal(requiredText(u"beat"_s, u"The beat's name, as get_beat_sheet lists it "
                                                  "(case-insensitive)."_s),
                          assignBeatNeedsBeat()),
          optionalText(u"document"_s, u"The scene's title, or \"\" to clear the beat."_s),
          documentId()},
         assignBeat},
    };
}

} // namespace fb::app
