#pragma once

#include "server/mcpserver.h"
#include "storage/workspace.h"
#include "support/printers.h"
#include "support/serverprocess.h"
#include "tools/common/mcpchangelog.h"
#include "tools/common/toolcontext.h"

#include <QDateTime>
#include <QJsonObject>
#include <QMap>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <memory>

namespace fb::test {

// The time every tool call in the fixture sees: tests need no clock of their own.
inline QDateTime fixedTime()
{
    return QDateTime(QDate(2025, 3, 14), QTime(9, 26, 53, 589), QTimeZone::utc());
}

// The answer of one tool call, as the agent sees it.
struct ToolReply
{
    bool ok = false;
    QString text;
};

// Opens a scratch copy of a test project in a Workspace, registers every tool family as the
// server does, and calls tools in process.
class ToolFixture : public ::testing::Test
{
protected:
    explicit ToolFixture(const QString &project = QStringLiteral("projects/novel"));

    ToolReply call(const QString &tool, const QJsonObject &arguments = {});
    // Calls a tool that must succeed and returns its text.
    QString ok(const QString &tool, const QJsonObject &arguments = {});
    // Calls a tool that must fail and returns its message.
    QString fails(const QString &tool, const QJsonObject &arguments = {});

    // Every file of the project folder, to compare before and after a call byte for byte.
    QMap<QString, QByteArray> files() const { return folderContents(m_workspace->folder()); }
    app::Workspace &workspace() { return *m_workspace; }

    ScratchProject m_scratch;
    std::unique_ptr<app::Workspace> m_workspace;
    app::McpChangeLog m_log;
    std::unique_ptr<app::ToolContext> m_context;
    std::unique_ptr<app::McpServer> m_server;
};

} // namespace fb::test
