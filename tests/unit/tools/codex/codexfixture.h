#pragma once

#include "core/contentobjects.h"
#include "core/project.h"
#include "support/toolfixture.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>

namespace fb::test {

using Args = QJsonObject;

// Tool arguments written as JSON text, which keeps tables of calls short and readable.
inline QJsonObject args(const char *json)
{
    return QJsonDocument::fromJson(QByteArray(json)).object();
}

// The codex test project with its mounted library, which it names by the relative path
// "../codexlibrary": the library is copied beside the scratch copy and the project reopened,
// so that the library loads as it would next to the real project.
class CodexFixture : public ToolFixture
{
protected:
    CodexFixture()
        : ToolFixture(QStringLiteral("projects/codex"))
    {
        const bool copied
            = copyFolder(QStringLiteral(FB_TEST_DATA_DIR "/projects/codexlibrary"),
                         QDir(m_scratch.root()).filePath(QStringLiteral("codexlibrary")));
        EXPECT_TRUE(copied);
        if (m_workspace) {
            EXPECT_TRUE(bool(m_workspace->reload()));
        }
    }

    using ToolFixture::fails;
    using ToolFixture::ok;
    QString ok(const char *tool, const char *json = "{}")
    {
        return ok(QString::fromUtf8(tool), args(json));
    }
    QString fails(const char *tool, const char *json = "{}")
    {
        return fails(QString::fromUtf8(tool), args(json));
    }

    core::Project &project() { return workspace().project(); }

    core::Entity *entity(const QString &name)
    {
        for (core::Entity *entity : project().objectsOfType<core::Entity>()) {
            if (entity->name() == name)
                return entity;
        }
        return nullptr;
    }

    const core::Category *category(const QString &name)
    {
        for (const core::Category *category : project().categories().all()) {
            if (category->name() == name)
                return category;
        }
        return nullptr;
    }

    // Ids of the test project: entities are e0de0000-0000-4000-8000-0000000000nn.
    static QString entityId(int n)
    {
        return QStringLiteral("e0de0000-0000-4000-8000-%1").arg(n, 12, 10, QLatin1Char('0'));
    }

    QString changeLog() { return ok(QStringLiteral("get_recent_changes")); }
};

} // namespace fb::test
