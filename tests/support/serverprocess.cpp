#include "support/serverprocess.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace fb::test {

bool copyFolder(const QString &from, const QString &to)
{
    QDir source(from);
    if (!source.exists() || !QDir().mkpath(to))
        return false;
    QDirIterator it(from, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString target = QDir(to).filePath(source.relativeFilePath(path));
        if (it.fileInfo().isDir()) {
            if (!QDir().mkpath(target))
                return false;
        } else if (!QDir().mkpath(QFileInfo(target).path()) || !QFile::copy(path, target)) {
            return false;
        }
    }
    return true;
}

QMap<QString, QByteArray> folderContents(const QString &folder)
{
    QMap<QString, QByteArray> contents;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            contents.insert(QDir(folder).relativeFilePath(path), file.readAll());
    }
    return contents;
}

ScratchProject::ScratchProject(const QString &source)
{
    const QString from = QDir::isAbsolutePath(source)
                             ? source
                             : QStringLiteral(FB_TEST_DATA_DIR "/") + source;
    m_path = m_dir.filePath(QFileInfo(from).fileName());
    if (QFileInfo(from).isDir())
        copyFolder(from, m_path);
    else
        QFile::copy(from, m_path);
}

QString ScratchProject::filePath(const QString &relative) const
{
    return QDir(m_path).filePath(relative);
}

ServerProcess::ServerProcess(const QStringList &arguments, const QString &dataHome)
    : m_dataHome(dataHome.isEmpty() ? m_ownDataHome.path() : dataHome)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"XDG_DATA_HOME"_s, m_dataHome);
    m_process.setProcessEnvironment(environment);
    m_process.start(QStringLiteral(FB_SERVER_BINARY), arguments);
    m_started = m_process.waitForStarted(20000);
}

ServerProcess::~ServerProcess()
{
    if (m_process.state() != QProcess::NotRunning) {
        m_process.closeWriteChannel();
        if (!m_process.waitForFinished(5000)) {
            m_process.kill();
            m_process.waitForFinished(5000);
        }
    }
}

void ServerProcess::send(const QByteArray &line)
{
    write(line + '\n');
}

void ServerProcess::write(const QByteArray &bytes)
{
    m_process.write(bytes);
    m_process.waitForBytesWritten(20000);
}

QByteArray ServerProcess::readLine(int timeoutMs)
{
    const QDeadlineTimer deadline(timeoutMs);
    while (!m_pending.contains('\n')) {
        if (deadline.hasExpired() || m_process.state() == QProcess::NotRunning) {
            m_pending += m_process.readAllStandardOutput();
            break;
        }
        m_process.waitForReadyRead(
            int(qMax<qint64>(1, qMin<qint64>(deadline.remainingTime(), 100))));
        m_pending += m_process.readAllStandardOutput();
    }
    const qsizetype end = m_pending.indexOf('\n');
    if (end < 0)
        return {};
    const QByteArray line = m_pending.left(end);
    m_pending.remove(0, end + 1);
    return line;
}

QJsonObject ServerProcess::request(const QByteArray &line)
{
    send(line);
    return QJsonDocument::fromJson(readLine()).object();
}

QJsonObject ServerProcess::request(const QJsonObject &message)
{
    return request(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

QJsonObject ServerProcess::callTool(const QString &name, const QJsonObject &arguments)
{
    const QJsonObject message{{u"jsonrpc"_s, u"2.0"_s},
                              {u"id"_s, m_nextId++},
                              {u"method"_s, u"tools/call"_s},
                              {u"params"_s,
                               QJsonObject{{u"name"_s, name}, {u"arguments"_s, arguments}}}};
    return request(message).value(u"result"_s).toObject();
}

ServerProcess::ToolAnswer ServerProcess::call(const QString &name, const QJsonObject &arguments)
{
    const QJsonObject result = callTool(name, arguments);
    const QJsonArray content = result.value(u"content"_s).toArray();
    return {content.first().toObject().value(u"text"_s).toString(),
            result.value(u"isError"_s).toBool()};
}

int ServerProcess::finish(int timeoutMs)
{
    m_process.closeWriteChannel();
    if (!m_process.waitForFinished(timeoutMs))
        return -1;
    m_pending += m_process.readAllStandardOutput();
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

QByteArray ServerProcess::standardError()
{
    return m_process.readAllStandardError();
}

} // namespace fb::test
