#include "core/project.h"
#include "core/task.h"
#include "planningfixture.h"
#include "tools/planning/taskfields.h"

using namespace Qt::StringLiterals;
using fb::test::Expected;
using fb::test::ExpectedChange;

namespace {

class TaskTools : public fb::test::PlanningFixture
{};

const QString allTasks = u"## Board: Tasks\n"
                         "- [ ] **Outline act two** -- To Do\n"
                         "- [ ] **Fix the timeline** -- Doing, high priority, due 2025-04-01\n"
                         "\n"
                         "## Board: archive\n"
                         "- [x] **Old idea** -- Dropped\n"
                         "\n"
                         "## Board: Revisions\n"
                         "- [x] **Polish the ending** -- Review, urgent priority, due 2025-03-01\n"
                         "- [ ] **Fix the timeline** -- To Do, low priority\n"
                         "\n"
                         "## Board: Submissions\n"
                         "- [ ] **Query agents** -- Sent"_s;

TEST_F(TaskTools, ListTasksByBoardWithoutTheExcludedOne)
{
    const Expected listings[] = {
        {"{}", allTasks},
        {R"({"include_done": false})",
         u"## Board: Tasks\n"
         "- [ ] **Outline act two** -- To Do\n"
         "- [ ] **Fix the timeline** -- Doing, high priority, due 2025-04-01\n"
         "\n"
         "## Board: Revisions\n"
         "- [ ] **Fix the timeline** -- To Do, low priority\n"
         "\n"
         "## Board: Submissions\n"
         "- [ ] **Query agents** -- Sent"_s},
        {R"({"board": "Revisions"})",
         u"## Board: Revisions\n"
         "- [x] **Polish the ending** -- Review, urgent priority, due 2025-03-01\n"
         "- [ ] **Fix the timeline** -- To Do, low priority"_s},
        // "" is the default board.
        {R"({"board": ""})", u"## Board: Tasks\n"
                             "- [ ] **Outline act two** -- To Do\n"
                             "- [ ] **Fix the timeline** -- Doing, high priority, due 2025-04-01"_s},
        // The filter compares board names exactly.
        {R"({"board": "revisions"})", u"No tasks on the board 'revisions'."_s},
        {R"({"board": "archive", "include_done": false})", u"No tasks on the board 'archive'."_s},
    };
    for (const auto &c : listings) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok("list_tasks", c.arguments), c.text);
    }
    EXPECT_EQ(fails("list_tasks", R"({"include_done": "no"})"),
              u"\"include_done\" must be true or false."_s);
}

TEST_F(TaskTools, CreateTasksWithTheirOptionalFields)
{
    const auto before = files();
    const ExpectedChange creations[] = {
        {R"({"title": "  Draft the synopsis "})",
         u"Created the task 'Draft the synopsis' on the Tasks board."_s, u"MCP: create task"_s},
        {R"({"title": "Send to Harbor Review", "description": "Short story.", "status": "Sent",
             "board": "Submissions", "priority": " URGENT ", "due": "2025-05-01",
             "submitted_to": "Harbor Review", "submission_type": "Magazine",
             "submitted_on": "2025-04-20", "submission_notes": "Fee paid."})",
         u"Created the task 'Send to Harbor Review' on the Submissions board. Also set: "
         "description, status, board, priority, due date, submission."_s,
         u"MCP: create task"_s},
        // Values equal to a new task's defaults set nothing.
        {R"({"title": "Plain", "status": "To Do", "board": "", "priority": "normal", "due": ""})",
         u"Created the task 'Plain' on the Tasks board."_s, u"MCP: create task"_s},
        {R"({"title": "Enter the contest", "submission_type": "contest"})",
         u"Created the task 'Enter the contest' on the Tasks board. Also set: submission."_s,
         u"MCP: create task"_s},
    };
    std::size_t expectedSteps = 0;
    for (const auto &c : creations) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok("create_task", c.arguments), c.text);
        EXPECT_EQ(steps(), ++expectedSteps);
        EXPECT_EQ(lastLabel(), c.label);
    }
    // A new task goes to the end of its board.
    EXPECT_EQ(ok("list_tasks", R"({"board": "Tasks"})"),
              u"## Board: Tasks\n"
              "- [ ] **Outline act two** -- To Do\n"
              "- [ ] **Fix the timeline** -- Doing, high priority, due 2025-04-01\n"
              "- [ ] **Draft the synopsis** -- To Do\n"
              "- [ ] **Plain** -- To Do\n"
              "- [ ] **Enter the contest** -- To Do"_s);
    EXPECT_EQ(ok("list_tasks", R"({"board": "Submissions"})"),
              u"## Board: Submissions\n"
              "- [ ] **Query agents** -- Sent\n"
              "- [ ] **Send to Harbor Review** -- Sent, urgent priority, due 2025-05-01"_s);
    undoAll();
    EXPECT_EQ(files(), before);
}

TEST_F(TaskTools, RefuseAMalformedTaskBeforeChangingAnything)
{
    const auto before = files();
    const QString lineBreak = u" must be a single line: a title or name cannot hold a line "
                              "break."_s;
    const Expected refusals[] = {
        {"{}", u"create_task needs a non-empty \"title\"."_s},
        {R"({"title": 5})", u"create_task needs a non-empty \"title\"."_s},
        {R"({"title": "Two\nlines"})", u"\"title\""_s + lineBreak},
        // Titles compare trimmed and ignoring case; an excluded task keeps its title too.
        {R"({"title": " fix the TIMELINE"})",
         u"A task titled 'fix the TIMELINE' already exists; choose a distinct title so each task "
         "stays addressable."_s},
        {R"({"title": "hide the heir"})",
         u"A task titled 'hide the heir' already exists; choose a distinct title so each task "
         "stays addressable."_s},
        {R"({"title": "New", "status": ""})",
         u"\"status\" must be a non-empty string (a board column)."_s},
        {R"({"title": "New", "status": 7})",
         u"\"status\" must be a non-empty string (a board column)."_s},
        {R"({"title": "New", "board": "Left\nRight"})", u"\"board\""_s + lineBreak},
        {R"({"title": "New", "priority": "asap"})",
         u"Unknown priority 'asap'; use low, normal, high, or urgent."_s},
        {R"({"title": "New", "priority": 3})", u"\"priority\" must be a string."_s},
        {R"({"title": "New", "due": "2025-02-30"})",
         u"The due date '2025-02-30' was not understood; use YYYY-MM-DD, or \"\" to clear it."_s},
        {R"({"title": "New", "submission_type": "blog"})",
         u"Unknown submission_type 'blog'; use agent, publisher, magazine, contest, or other."_s},
        {R"({"title": "New", "submitted_on": "yesterday"})",
         u"The submitted_on date 'yesterday' was not understood; use YYYY-MM-DD, or \"\" to "
         "clear it."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("create_task", c.arguments), c.text);
    }
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
    EXPECT_EQ(files(), before);
}

TEST_F(TaskTools, UpdateOnlyTheGivenAspects)
{
    const auto before = files();
    const ExpectedChange updates[] = {
        {R"({"task": " outline ACT two ", "done": true})",
         u"Updated the task 'Outline act two' (done)."_s, u"MCP: update task"_s},
        {R"({"task": "Outline act two", "new_title": "Outline act three", "description": "All of it.",
             "status": "Doing", "board": "Revisions", "priority": "High", "due": "2025-06-30"})",
         u"Updated the task 'Outline act three' (title, description, status, board, priority, due "
         "date)."_s,
         u"MCP: update task"_s},
        // "" is the default board and clears a date; the record keeps its recipient and notes.
        {R"({"task": "query agents", "board": "", "due": "", "submission_type": "publisher",
             "submitted_on": ""})",
         u"Updated the task 'Query agents' (board, due date, submission)."_s, u"MCP: update task"_s},
        {R"({"task": "Polish the ending", "due": "", "done": false})",
         u"Updated the task 'Polish the ending' (done, due date)."_s, u"MCP: update task"_s},
    };
    std::size_t expectedSteps = 0;
    for (const auto &c : updates) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(ok("update_task", c.arguments), c.text);
        EXPECT_EQ(steps(), ++expectedSteps);
        EXPECT_EQ(lastLabel(), c.label);
    }
    // A moved task keeps its position number, which places it among its new board's tasks.
    EXPECT_EQ(ok("list_tasks"),
              u"## Board: Tasks\n"
              "- [ ] **Query agents** -- Sent\n"
              "- [ ] **Fix the timeline** -- Doing, high priority, due 2025-04-01\n"
              "\n"
              "## Board: archive\n"
              "- [x] **Old idea** -- Dropped\n"
              "\n"
              "## Board: Revisions\n"
              "- [x] **Outline act three** -- Doing, high priority, due "
              "2025-06-30\n"
              "- [ ] **Polish the ending** -- Review, urgent priority\n"
              "- [ ] **Fix the timeline** -- To Do, low priority"_s);
    const fb::core::Submission submission = [&] {
        for (const fb::core::Task *task : workspace().project().objectsOfType<fb::core::Task>()) {
            if (task->title() == u"Query agents"_s)
                return task->submission();
        }
        return fb::core::Submission();
    }();
    EXPECT_EQ(submission,
              (fb::core::Submission{u"Harbor Literary"_s, fb::core::SubmissionKind::Publisher,
                                    QDate(), u"Sample chapters."_s}));
    undoAll();
    EXPECT_EQ(files(), before);
}

TEST_F(TaskTools, AnswerAnUpdateThatChangesNothingWithoutRecordingAStep)
{
    EXPECT_EQ(ok("update_task", R"({"task": "Outline act two", "status": "To Do",
                                     "board": "Tasks", "done": false})"),
              u"Updated the task 'Outline act two' (status, board, done)."_s);
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(changeLog(), u"No changes this session."_s);
}

TEST_F(TaskTools, RefuseAnUpdateBeforeChangingAnything)
{
    const auto before = files();
    const Expected refusals[] = {
        {"{}", u"update_task needs \"task\" (the task's title)."_s},
        {R"({"task": "Nothing here", "done": true})", u"No task named 'Nothing here' exists."_s},
        // Two tasks share the title: both are listed with their board and column.
        {R"({"task": "fix the timeline", "done": true})",
         u"The name 'fix the timeline' matches 2 tasks: 'Fix the timeline' (board Tasks, status "
         "Doing); 'Fix the timeline' (board Revisions, status To Do). Make the name unique in the "
         "desktop app, or use a more specific name."_s},
        {R"({"task": "Hide the heir", "done": true})",
         u"'Hide the heir' is excluded from AI and cannot be changed."_s},
        {R"({"task": "Outline act two"})",
         u"update_task changed nothing; provide at least one of new_title, description, status, "
         "board, done, priority, due, submitted_to, submission_type, submitted_on, or "
         "submission_notes."_s},
        {R"({"task": "Outline act two", "done": "yes"})", u"\"done\" must be true or false."_s},
        {R"({"task": "Outline act two", "new_title": " "})",
         u"\"new_title\" must be a non-empty string."_s},
        {R"({"task": "Outline act two", "new_title": "Polish THE ending"})",
         u"A task titled 'Polish THE ending' already exists; choose a distinct title so each task "
         "stays addressable."_s},
        {R"({"task": "Outline act two", "status": "  "})",
         u"\"status\" must be a non-empty string (a board column)."_s},
        // A valid key does not carry an invalid one through.
        {R"({"task": "Outline act two", "done": true, "priority": "meh"})",
         u"Unknown priority 'meh'; use low, normal, high, or urgent."_s},
    };
    for (const auto &c : refusals) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(fails("update_task", c.arguments), c.text);
    }
    EXPECT_EQ(steps(), 0u);
    EXPECT_EQ(files(), before);
}

TEST_F(TaskTools, ReadOnlyTheZeroPaddedCalendarDate)
{
    const struct
    {
        QString text;
        QDate date;
    } dates[] = {
        {u"2025-03-01"_s, QDate(2025, 3, 1)},
        {u"2024-02-29"_s, QDate(2024, 2, 29)},
        {u"2025-02-29"_s, QDate()},
        {u"2025-02-30"_s, QDate()},
        {u"2025-3-01"_s, QDate()},
        {u"25-03-01"_s, QDate()},
        {u"2025-03-01T10:00"_s, QDate()},
        {u"2025/03/01"_s, QDate()},
        {u"0000-01-01"_s, QDate()},
    };
    for (const auto &c : dates) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(fb::app::parseCalendarDate(c.text).value_or(QDate()), c.date);
    }
}

} // namespace
