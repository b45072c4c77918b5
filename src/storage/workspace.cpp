#include "storage/workspace.h"

#include <QDir>
#include <QFileInfo>

namespace fb::app {

StoragePaths StoragePaths::forBundle(const QString &, const QString &)
{
    return {};
}

Workspace::Workspace() = default;
Workspace::~Workspace() = default;

Result<std::unique_ptr<Workspace>> Workspace::openFolder(const QString &path)
{
    const QString native = QDir::toNativeSeparators(path);
    if (!QFileInfo(path).isDir())
        return makeError(QStringLiteral("The project folder does not exist: %1").arg(native));
    if (!QFileInfo::exists(QDir(path).filePath(QStringLiteral("project.json")))) {
        return makeError(
            QStringLiteral("The folder is not an Fablery project (no project.json): %1").arg(native));
    }
    std::unique_ptr<Workspace> workspace(new Workspace);
    workspace->m_folder = QFileInfo(path).absoluteFilePath();
    return workspace;
}

Result<std::unique_ptr<Workspace>> Workspace::openBundle(const QString &bundlePath,
                                                         const StoragePaths &)
{
    return makeError(QStringLiteral("Could not open the project file: %1")
                         .arg(QDir::toNativeSeparators(bundlePath)));
}

Result<void> Workspace::save()
{
    return {};
}

bool Workspace::hasExternalChange()
{
    return false;
}

Result<void> Workspace::reload()
{
    return {};
}

QString Workspace::displayPath() const
{
    return m_bundlePath.isEmpty() ? m_folder : m_bundlePath;
}

} // namespace fb::app
