#include "support/toolfixture.h"

#include "tools/common/toolcontext.h"
#include "tools/registration.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace fb::test {

ToolFixture::ToolFixture(const QString &project)
    : m_scratch(project)
{
    auto opened = app::Workspace::openFolder(m_scratch.path());
    if (!opened) {
        ADD_FAILURE() << "could not open " << project.toStdString() << ": "
                      << opened.error().toStdString();
        return;
    }
    m_workspace = std::move(opened).value();
    m_server = std::make_unique<app::McpServer>(u"fablery"_s, u"0.1.2"_s, QString());
    m_context = std::make_unique<app::ToolContext>(*m_workspace, m_log, [] { return fixedTime(); });
    app::registerAllTools(*m_server, *m_context);
}

ToolReply ToolFixture::call(const QString &tool, const QJsonObject &arguments)
{
    const QJsonObject request{{u"id"_s, 1},
                              {u"method"_s, u"tools/call"_s},
                              {u"params"_s,
                               QJsonObject{{u"name"_s, tool}, {u"arguments"_s, arguments}}}};
    const auto line = m_server->handleLine(
        QString::fromUtf8(QJsonDocument(request).toJson(QJsonDocument::Compact)));
    const QJsonObject answer = QJsonDocument::fromJson(line.value_or(QString()).toUtf8()).object();
    if (answer.contains(u"error"_s)) {
        ADD_FAILURE() << "protocol error: " << line.value_or(QString()).toStdString();
        return {};
    }
    const QJsonObject result = answer.value(u"result"_s).toObject();
    return {!result.value(u"isError"_s).toBool(),
            result.value(u"content"_s).toArray().first().toObject().value(u"text"_s).toString()};
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
