// Starts the real server over stdio on a generated project and reports, as medians and 95th
// percentiles over repeated runs, how long the calls an agent makes take, and the server's peak
// memory. Timings are wall-clock from writing a request to reading its answer line.

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

struct Row
{
    QString what;
    std::vector<double> milliseconds;
};

double percentile(std::vector<double> values, double fraction)
{
    if (values.empty())
        return 0;
    std::sort(values.begin(), values.end());
    const size_t index = std::min(values.size() - 1, size_t(fraction * double(values.size() - 1) + 0.5));
    return values[index];
}

class Server
{
public:
    Server(const QString &binary, const QString &project, const QString &dataHome)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("XDG_DATA_HOME"), dataHome);
        m_process.setProcessEnvironment(environment);
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(binary, {project});
        m_process.waitForStarted(-1);
    }

    ~Server()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished(-1);
    }

    // Sends one request and waits for its answer; returns the elapsed milliseconds.
    double request(const QJsonObject &message, QJsonObject *answer = nullptr)
    {
        const QByteArray line = QJsonDocument(message).toJson(QJsonDocument::Compact) + '\n';
        QElapsedTimer timer;
        timer.start();
        m_process.write(line);
        while (!m_pending.contains('\n')) {
            if (!m_process.waitForReadyRead(60000)) {
                std::fprintf(stderr, "The server did not answer.\n");
                std::exit(1);
            }
            m_pending += m_process.readAllStandardOutput();
        }
        const double elapsed = double(timer.nsecsElapsed()) / 1e6;
        const qsizetype end = m_pending.indexOf('\n');
        if (answer)
            *answer = QJsonDocument::fromJson(m_pending.left(end)).object();
        m_pending.remove(0, end + 1);
        return elapsed;
    }

    double call(const QString &tool, const QJsonObject &arguments, QString *text = nullptr)
    {
        QJsonObject answer;
        const double elapsed = request(
            {{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
             {QStringLiteral("id"), ++m_id},
             {QStringLiteral("method"), QStringLiteral("tools/call")},
             {QStringLiteral("params"), QJsonObject{{QStringLiteral("name"), tool},
                                                    {QStringLiteral("arguments"), arguments}}}},
            &answer);
        const QJsonObject result = answer.value(QStringLiteral("result")).toObject();
        const QString reply =
            result.value(QStringLiteral("content")).toArray().first().toObject().value(QStringLiteral("text")).toString();
        if (result.value(QStringLiteral("isError")).toBool() || answer.contains(QStringLiteral("error")))
            std::fprintf(stderr, "%s failed: %s\n", qPrintable(tool), qPrintable(reply.left(200)));
        if (text)
            *text = reply;
        return elapsed;
    }

    double initialize()
    {
        return request({{QStringLiteral("jsonrpc"), QStringLiteral("2.0")},
                        {QStringLiteral("id"), ++m_id},
                        {QStringLiteral("method"), QStringLiteral("initialize")},
                        {QStringLiteral("params"),
                         QJsonObject{{QStringLiteral("protocolVersion"), QStringLiteral("2025-06-18")}}}});
    }

    QStringList toolNames()
    {
        QJsonObject answer;
        request({{QStringLiteral("id"), ++m_id}, {QStringLiteral("method"), QStringLiteral("tools/list")}},
                &answer);
        QStringList names;
        for (const QJsonValue &tool : answer.value(QStringLiteral("result")).toObject().value(QStringLiteral("tools")).toArray())
            names.append(tool.toObject().value(QStringLiteral("name")).toString());
        return names;
    }

    // The largest resident set the process has had, from the kernel's own record.
    double peakMegabytes() const
    {
        QFile status(QStringLiteral("/proc/%1/status").arg(m_process.processId()));
        if (!status.open(QIODevice::ReadOnly))
            return 0;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith("VmHWM:"))
                return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
        }
        return 0;
    }

private:
    QProcess m_process;
    QByteArray m_pending;
    int m_id = 0;
};

double folderMegabytes(const QString &folder)
{
    qint64 bytes = 0;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        bytes += it.fileInfo().size();
    }
    return double(bytes) / 1e6;
}

bool copyTree(const QString &relativeFrom, const QString &to)
{
    const QString from = QDir(relativeFrom).absolutePath();
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString target = QDir(to).filePath(QDir(from).relativeFilePath(path));
        QDir().mkpath(QFileInfo(target).path());
        if (!QFile::copy(path, target))
            return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 3) {
        std::fprintf(stderr, "Usage: fablery-bench-driver <server binary> <generated folder> [runs]\n");
        return 2;
    }
    const QString binary = arguments[1];
    const QString generated = arguments[2];
    const int runs = arguments.size() > 3 ? arguments[3].toInt() : 20;

    QTemporaryDir scratch;
    const QString folder = scratch.filePath(QStringLiteral("project"));
    const QString bundle = scratch.filePath(QStringLiteral("project.fablery"));
    if (!copyTree(QDir(generated).filePath(QStringLiteral("project")), folder)
        || !QFile::copy(QDir(generated).filePath(QStringLiteral("project.fablery")), bundle)) {
        std::fprintf(stderr, "Run the generator first: %s has no project.\n", qPrintable(generated));
        return 1;
    }
    const QString dataHome = scratch.filePath(QStringLiteral("data"));
    std::vector<Row> rows;
    const auto measure = [&](const QString &what, int count, const std::function<double(int)> &once) {
        Row row{what, {}};
        for (int i = 0; i < count; ++i)
            row.milliseconds.push_back(once(i));
        rows.push_back(row);
    };

    measure(QStringLiteral("start to \"initialize\" answer (folder)"), runs, [&](int) {
        QElapsedTimer timer;
        timer.start();
        Server server(binary, folder, dataHome);
        server.initialize();
        return double(timer.nsecsElapsed()) / 1e6;
    });
    {
        // The first open of a bundle extracts it; later opens find the working copy clean.
        Server first(binary, bundle, dataHome);
        first.initialize();
    }
    measure(QStringLiteral("start to \"initialize\" answer (bundle)"), runs, [&](int) {
        QElapsedTimer timer;
        timer.start();
        Server server(binary, bundle, dataHome);
        server.initialize();
        return double(timer.nsecsElapsed()) / 1e6;
    });

    double folderPeak = 0;
    {
        Server server(binary, folder, dataHome);
        server.initialize();
        const QStringList tools = server.toolNames();
        measure(QStringLiteral("\"tools/list\""), runs, [&](int) {
            return server.request({{QStringLiteral("id"), 1}, {QStringLiteral("method"), QStringLiteral("tools/list")}});
        });
        measure(QStringLiteral("\"get_document\""), runs * 3, [&](int i) {
            return server.call(QStringLiteral("get_document"),
                               {{QStringLiteral("title"), QStringLiteral("Scene %1.%2").arg(i % 10 + 1).arg(i % 9 + 1)}});
        });
        measure(QStringLiteral("\"get_manuscript_tree\""), runs, [&](int) {
            return server.call(QStringLiteral("get_manuscript_tree"), {});
        });
        if (tools.contains(QStringLiteral("search"))) {
            measure(QStringLiteral("\"search\""), runs, [&](int i) {
                return server.call(QStringLiteral("search"), {{QStringLiteral("query"), QStringLiteral("Alias %1").arg(200 + i)}});
            });
        }
        if (tools.contains(QStringLiteral("get_entity"))) {
            measure(QStringLiteral("\"get_entity\" (with mentions)"), runs, [&](int i) {
                return server.call(QStringLiteral("get_entity"), {{QStringLiteral("name"), QStringLiteral("Entity %1").arg(100 + i)}});
            });
        }
        measure(QStringLiteral("\"append_to_document\" (folder)"), runs * 3, [&](int i) {
            return server.call(QStringLiteral("append_to_document"),
                               {{QStringLiteral("title"), QStringLiteral("Scene %1.%2").arg(i % 10 + 1).arg(i % 9 + 1)},
                                {QStringLiteral("text"), QStringLiteral("One more line of prose for the benchmark.")}});
        });
        if (tools.contains(QStringLiteral("update_entity"))) {
            measure(QStringLiteral("\"update_entity\" (folder)"), runs * 3, [&](int i) {
                return server.call(QStringLiteral("update_entity"),
                                   {{QStringLiteral("entity"), QStringLiteral("Entity %1").arg(i + 1)},
                                    {QStringLiteral("tags"), QJsonArray{QStringLiteral("bench%1").arg(i)}}});
            });
        }
        folderPeak = server.peakMegabytes();
    }
    // Find and replace runs in a session of its own: every replacement across the manuscript
    // keeps the former bodies for undo, which is not what an ordinary session's memory is.
    double replacePeak = 0;
    {
        Server server(binary, folder, dataHome);
        server.initialize();
        measure(QStringLiteral("\"find_replace\" listing"), runs, [&](int) {
            return server.call(QStringLiteral("find_replace"), {{QStringLiteral("find"), QStringLiteral("harbor")},
                                                                {QStringLiteral("dry_run"), true}});
        });
        // Every scene holds the word, so each replacement rewrites the whole manuscript.
        measure(QStringLiteral("\"find_replace\" across every document"), 4, [&](int i) {
            const bool forth = i % 2 == 0;
            return server.call(QStringLiteral("find_replace"),
                               {{QStringLiteral("find"), forth ? QStringLiteral("harbor") : QStringLiteral("harbour")},
                                {QStringLiteral("replace"), forth ? QStringLiteral("harbour") : QStringLiteral("harbor")},
                                {QStringLiteral("whole_word"), true}});
        });
        replacePeak = server.peakMegabytes();
    }
    double bundlePeak = 0;
    {
        Server server(binary, bundle, dataHome);
        server.initialize();
        measure(QStringLiteral("\"append_to_document\" (bundle)"), runs, [&](int i) {
            return server.call(QStringLiteral("append_to_document"),
                               {{QStringLiteral("title"), QStringLiteral("Scene %1.%2").arg(i % 10 + 1).arg(i % 9 + 1)},
                                {QStringLiteral("text"), QStringLiteral("One more line of prose for the benchmark.")}});
        });
        if (server.toolNames().contains(QStringLiteral("update_entity"))) {
            measure(QStringLiteral("\"update_entity\" (bundle)"), runs, [&](int i) {
                return server.call(QStringLiteral("update_entity"),
                                   {{QStringLiteral("entity"), QStringLiteral("Entity %1").arg(i + 1)},
                                    {QStringLiteral("tags"), QJsonArray{QStringLiteral("bundle%1").arg(i)}}});
            });
        }
        bundlePeak = server.peakMegabytes();
    }

    std::printf("Project: %.1f MB on disk in %s\n\n", folderMegabytes(folder), qPrintable(generated));
    std::printf("| measurement | runs | median ms | p95 ms |\n|---|---:|---:|---:|\n");
    for (const Row &row : rows) {
        std::printf("| %s | %zu | %.2f | %.2f |\n", qPrintable(row.what), row.milliseconds.size(),
                    percentile(row.milliseconds, 0.5), percentile(row.milliseconds, 0.95));
    }
    std::printf("| peak memory, folder session | | %.1f MB | |\n", folderPeak);
    std::printf("| peak memory, bundle session | | %.1f MB | |\n", bundlePeak);
    std::printf("| peak memory, find and replace session | | %.1f MB | |\n", replacePeak);
    return 0;
}
