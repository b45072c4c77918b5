#include "server/runserver.h"

#include "server/jsonrpc.h"
#include "server/linereader.h"
#include "server/mcpserver.h"
#include "storage/workspace.h"
#include "tools/common/mcpchangelog.h"
#include "tools/common/toolcontext.h"
#include "tools/registration.h"

#include <QGuiApplication>

#include <cstdio>
#include <memory>

#include <unistd.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

const char *const usageText = "Usage: fablery-mcp <project path>\n"
                              "  <project path>  an Fablery project folder or .fablery file\n";

QString instructionsText()
{
    return u"This server operates one Fablery project. Address objects by NAME (entities also "
           "resolve by alias); when a name is ambiguous the tool says so. Every mutating tool call "
           "applies as ONE undo step and saves the project immediately -- undo_last reverts the "
           "most recent one. If the project is also open in the Fablery desktop app, the app "
           "notices these saves and offers to merge them; that is the intended workflow, not a "
           "conflict."_s;
}

// Standard error is the writer's log of this server: it carries the server's own sentences, not
// the toolkit's chatter about the headless platform (a missing runtime folder, fonts). Only the
// toolkit's critical and fatal messages still reach it.
void toolkitMessageFilter(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type != QtCriticalMsg && type != QtFatalMsg)
        return;
    const QByteArray bytes = (u"fablery-mcp: "_s + message + u'\n').toUtf8();
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
    if (path.endsWith(u".fablery"_s, Qt::CaseInsensitive)) {
        return Workspace::openBundle(path, StoragePaths::forBundle(path, u"workingcopies-mcp"_s));
    }
    return Workspace::openFolder(path);
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
        writeError(u"fablery-mcp: could not adopt external change: %1\n"_s.arg(reloaded.error()));
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
    return u"The message is longer than %1 bytes, the most this server reads in "
           "one line."_s.arg(kMaxLineLength);
}

// A line past the cap is answered as unreadable JSON: it was never stored, so there is no id
// to answer to.
std::optional<QString> answerLine(McpServer &server, const InputLine &line)
{
    if (line.isTooLong)
        return jsonRpcError(QJsonValue::Null, JsonRpcCode::ParseError, lineTooLongMessage());
    return server.handleLine(line.bytes);
}

// A long answer (a timeline of thousands of events is half a megabyte) passes through several
// buffers of its size. By default the C library maps each such buffer afresh and hands it back
// to the system when freed, so every call pays page faults for memory it just released; on the
// large benchmark project that was two thirds of a "get_timeline" call. Keeping freed memory up
// to 32 MiB in the heap, and mapping only larger blocks, makes repeated calls reuse it.
void keepFreedMemoryForReuse()
{
#ifdef __GLIBC__
    constexpr int keptBytes = 32 * 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, keptBytes);
    mallopt(M_TRIM_THRESHOLD, keptBytes);
#endif
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
    keepFreedMemoryForReuse();
    // The GUI layer is only needed for PDF text extraction; it must never ask for a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(toolkitMessageFilter);
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(u"Fablery MCP"_s);
    QGuiApplication::setOrganizationName(u"Tallowick Works"_s);

    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2) {
        std::fputs(usageText, stderr);
        std::fflush(stderr);
        return 2;
    }
    // Asked for by a person at a terminal, so answered on standard output.
    if (arguments.at(1) == u"--help" || arguments.at(1) == u"-h") {
        std::fputs(usageText, stdout);
        return 0;
    }
    if (arguments.at(1) == u"--version") {
        std::fputs("fablery-mcp " FB_VERSION "\n", stdout);
        return 0;
    }

    Result<std::unique_ptr<Workspace>> opened = openProject(arguments.at(1));
    if (!opened) {
        writeError(u"Could not open the project: %1\n"_s.arg(opened.error()));
        return 1;
    }
    std::unique_ptr<Workspace> workspace = std::move(opened).value();

    McpChangeLog log;
    auto server = std::make_unique<McpServer>(u"fablery"_s, QStringLiteral(FB_VERSION),
                                              instructionsText());
    ToolContext context(*workspace, log);
    registerAllTools(*server, context);
    server->setToolCallHook([&workspace](const std::function<McpToolResult()> &runTool) {
        return runToolCall(*workspace, runTool);
    });

    writeError(u"fablery-mcp serving %1\n"_s.arg(workspace->displayPath()));
    serve(*server);

    server.reset();
    workspace.reset();
    return 0;
}

} // namespace fb::app
