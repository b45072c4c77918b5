#include "server/runserver.h"

#include "server/jsonrpc.h"
#include "server/linereader.h"
#include "server/mcpserver.h"
#include "storage/mcpchangelog.h"
#include "storage/workspace.h"
#include "tools/registration.h"

#include <QGuiApplication>

#include <cstdio>
#include <memory>

#include <unistd.h>

namespace fb::app {

namespace {

const char *const usageText = "Usage: fablery-mcp <project path>\n"
                              "  <project path>  an Fablery project folder or .fablery file\n";

QString instructionsText()
{
    return QStringLiteral(
        "This server operates one Fablery project. Address objects by NAME (entities also "
        "resolve by alias); when a name is ambiguous the tool says so. Every mutating tool call "
        "applies as ONE undo step and saves the project immediately -- undo_last reverts the "
        "most recent one. If the project is also open in the Fablery desktop app, the app "
        "notices these saves and offers to merge them; that is the intended workflow, not a "
        "conflict.");
}

// Standard error is the writer's log of this server: it carries the server's own sentences, not
// the toolkit's chatter about the headless platform (a missing runtime folder, fonts). Only the
// toolkit's critical and fatal messages still reach it.
void toolkitMessageFilter(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtCriticalMsg && type != QtFatalMsg)
        return;
    const QByteArray bytes = (QStringLiteral("fablery-mcp: ") + message + u'\n').toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
}

void writeError(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stderr);
    std::fflush(stderr);
}

Result<std::unique_ptr<Workspace>> openProject(const QString &path)
{
    if (path.endsWith(QStringLiteral(".fablery"), Qt::CaseInsensitive)) {
        return Workspace::openBundle(path,
                                     StoragePaths::forBundle(path, QStringLiteral("workingcopies-mcp")));
    }
    return Workspace::openFolder(path);
}

void registerToolFamilies(McpServer &server, Workspace &workspace, McpChangeLog &log)
{
    registerMcpCoreTools(server, workspace, log);
    registerMcpWorldTools(server, workspace, log);
    registerMcpDocumentTools(server, workspace, log);
    registerTimelineTools(server, workspace, log);
    registerCalendarTools(server, workspace, log);
    registerSpreadsheetTools(server, workspace, log);
    registerMapMediaTools(server, workspace, log);
    registerSourceTools(server, workspace, log);
    registerPlanningTools(server, workspace, log);
    registerLanguageTools(server, workspace, log);
    registerTtrpgTools(server, workspace, log);
    registerExportImportTools(server, workspace, log);
}

// Before each tool call the project is brought in step with what other programs (the desktop
// application) saved meanwhile. A failed adoption is reported and the call goes on against
// the project as it is in memory, which then refuses every change until the project reads again.
void adoptExternalChanges(Workspace &workspace)
{
    if (!workspace.hasExternalChange())
        return;
    const Result<void> reloaded = workspace.reload();
    if (!reloaded)
        writeError(QStringLiteral("fablery-mcp: could not adopt external change: %1\n")
                       .arg(reloaded.error()));
}

// A call holds the project's lock from the adoption of outside changes to its save, so another
// server on the same project never works between the two.
McpToolResult runToolCall(Workspace &workspace, const std::function<McpToolResult()> &runTool)
{
    Result<ProjectLock::Hold> held = workspace.lockForCall();
    if (!held)
        return McpToolResult::failure(held.error());
    adoptExternalChanges(workspace);
    return runTool();
}

QString lineTooLongMessage()
{
    return QStringLiteral("The message is longer than %1 bytes, the most this server reads in "
                          "one line.")
        .arg(kMaxLineLength);
}

// A line past the cap is answered as unreadable JSON: it was never stored, so there is no id
// to answer to.
std::optional<QString> answerLine(McpServer &server, const InputLine &line)
{
    if (line.isTooLong)
        return jsonRpcError(QJsonValue::Null, JsonRpcCode::ParseError, lineTooLongMessage());
    return server.handleLine(line.bytes);
}

void serve(McpServer &server)
{
    LineReader reader(STDIN_FILENO);
    while (const std::optional<InputLine> line = reader.next()) {
        const std::optional<QString> response = answerLine(server, *line);
        if (!response)
            continue;
        const QByteArray bytes = response->toUtf8();
        std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
        std::fputc('\n', stdout);
        std::fflush(stdout);
    }
}

} // namespace

int runServer(int argc, char **argv)
{
    // The GUI layer is only needed for PDF text extraction; it must never ask for a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(toolkitMessageFilter);
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(QStringLiteral("Fablery MCP"));
    QGuiApplication::setOrganizationName(QStringLiteral("Tallowick Works"));

    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs(usageText, stderr);
        std::fflush(stderr);
        return 2;
    }

    Result<std::unique_ptr<Workspace>> opened = openProject(arguments.at(1));
    if (!opened) {
        writeError(QStringLiteral("Could not open the project: %1\n").arg(opened.error()));
        return 1;
    }
    std::unique_ptr<Workspace> workspace = std::move(opened).value();

    McpChangeLog log;
    auto server = std::make_unique<McpServer>(QStringLiteral("fablery"), QStringLiteral("0.1.2"),
                                              instructionsText());
    registerToolFamilies(*server, *workspace, log);
    server->setToolCallHook([&workspace](const std::function<McpToolResult()> &runTool) {
        return runToolCall(*workspace, runTool);
    });

    writeError(QStringLiteral("fablery-mcp serving %1\n").arg(workspace->displayPath()));
    serve(*server);

    server.reset();
    workspace.reset();
    return 0;
}

} // namespace fb::app
