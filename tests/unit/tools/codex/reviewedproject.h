#pragma once

#include "support/toolfixture.h"

#include <QDir>

#include <initializer_list>
#include <utility>

namespace fb::test {

// Tool arguments written tersely: args({{"target", "The Ferry"}, {"include_resolved", true}}).
inline QJsonObject args(std::initializer_list<std::pair<const char *, QJsonValue>> members)
{
    QJsonObject object;
    for (const auto &[key, value] : members)
        object.insert(QString::fromUtf8(key), value);
    return object;
}

// The reviewed test project (documents, entities, comment threads, excluded objects) with its
// mounted library copied beside it, where the relative mount path points; the second mount's
// folder is deliberately missing.
class ReviewedProject : public ToolFixture
{
protected:
    ReviewedProject()
        : ToolFixture(QStringLiteral("projects/reviewed"))
    {
        copyFolder(QStringLiteral(FB_TEST_DATA_DIR "/projects/reviewedlibrary"),
                   sibling(QStringLiteral("reviewedlibrary")));
        reload();
    }

    QString sibling(const QString &name) const { return QDir(m_scratch.root()).filePath(name); }

    // Reads the project and its libraries again, as after a change on disk.
    void reload()
    {
        const Result<void> reloaded = workspace().reload();
        ASSERT_TRUE(reloaded) << reloaded.error().toStdString();
    }

    QString ok(const char *tool, const QJsonObject &arguments = {})
    {
        return ToolFixture::ok(QString::fromUtf8(tool), arguments);
    }
    QString fails(const char *tool, const QJsonObject &arguments = {})
    {
        return ToolFixture::fails(QString::fromUtf8(tool), arguments);
    }
};

} // namespace fb::test
