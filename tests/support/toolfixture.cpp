#include "support/toolfixture.h"

#include "tools/registration.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace fb::test {

ToolFixture::ToolFixture(const QString &project) : m_scratch(project)
{
    auto opened = app::Workspace::openFolder(m_scratch.path());
    if (!opened) {
        ADD_FAILURE() << "could not open " << project.toStdString() << ": "
                      << opened.error().toStdString();
        return;
    }
    m_workspace = std::move(opened).value();
    m_server = std::make_unique<app::McpServer>(QStringLiteral("fablery"), QStringLiteral("0.1.2"),
                                                QString());
    app::registerMcpCoreTools(*m_server, *m_workspace, m_log);
    app::registerMcpWorldTools(*m_server, *m_workspace, m_log);
    app::registerMcpDocumentTools(*m_server, *m_workspace, m_log);
    app::registerTimelineTools(*m_server, *m_workspace, m_log);
    app::registerCalendarTools(*m_server, *m_workspace, m_log);
    app::registerSpreadsheetTools(*m_server, *m_workspace, m_log);
    app::registerMapMediaTools(*m_server, *m_workspace, m_log);
    app::registerSourceTools(*m_server, *m_workspace, m_log);
    app::registerPlanningTools(*m_server, *m_workspace, m_log);
    app::registerLanguageTools(*m_server, *m_workspace, m_log);
    app::registerTtrpgTools(*m_server, *m_workspace, m_log);
    app::registerExportImportTools(*m_server, *m_workspace, m_log);
}

ToolReply ToolFixture::call(const QString &tool, const QJsonObject &arguments)
{
    const QJsonObject request{
        {QStringLiteral("id"), 1},
        {QStringLiteral("method"), QStringLiteral("tools/call")},
        {QStringLiteral("params"), QJsonObject{{QStringLiteral("name"), tool},
                                               {QStringLiteral("arguments"), arguments}}}};
    const auto line = m_server->handleLine(
        QString::fromUtf8(QJsonDocument(request).toJson(QJsonDocument::Compact)));
    const QJsonObject answer = QJsonDocument::fromJson(line.value_or(QString()).toUtf8()).object();
    if (answer.contains(QStringLiteral("error"))) {
        ADD_FAILURE() << "protocol error: " << line.value_or(QString()).toStdString();
        return {};
    }
    const QJsonObject result = answer.value(QStringLiteral("result")).toObject();
    return {!result.value(QStringLiteral("isError")).toBool(),
            result.value(QStringLiteral("content")).toArray().first().toObject().value(QStringLiteral("text")).toString()};
}

QString ToolFixture::ok(const QString &tool, const QJsonObject &arguments)
{
    const ToolReply reply = call(tool, arguments);
    EXPECT_TRUE(reply.ok) << tool.toStdString() << " failed: " << reply.text.toStdString();
    return reply.text;
}

QString ToolFixture::fails(const QString &tool, const QJsonObject &arguments)
{
    const ToolReply reply = call(tool, arguments);
    EXPECT_FALSE(reply.ok) << tool.toStdString() << " succeeded: " << reply.text.toStdString();
    return reply.text;
}

} // namespace fb::test
