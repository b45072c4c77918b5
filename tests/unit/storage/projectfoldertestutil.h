#pragma once

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QString>

#include <gtest/gtest.h>

// Shared by the project folder tests: the checked-in sample project and whole-folder
// comparisons.

inline QString everythingFolder()
{
    return QStringLiteral(FB_TEST_DATA_DIR "/projects/everything");
}

// Every file under a folder by relative path with "/" separators, with its bytes.
inline QMap<QString, QByteArray> folderFiles(const QString &folder)
{
    QMap<QString, QByteArray> files;
    const QDir root(folder);
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            files.insert(root.relativeFilePath(path), file.readAll());
    }
    return files;
}

inline void writeFile(const QString &path, const QByteArray &bytes)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).absolutePath()));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

inline void copyFolder(const QString &from, const QString &to)
{
    const QMap<QString, QByteArray> files = folderFiles(from);
    for (auto it = files.cbegin(); it != files.cend(); ++it)
        writeFile(QDir(to).filePath(it.key()), it.value());
}
