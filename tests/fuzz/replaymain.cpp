// Runs the checked-in corpus of one fuzz target through the target's function, so that every
// input the fuzzer once found interesting, and every crash it found, is replayed by ordinary
// test runs without libFuzzer.

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

// Every file named on the command line, and every file below the folders named there, in a
// stable order so a failing run can be repeated.
QStringList inputFiles(int argc, char **argv)
{
    QStringList files;
    for (int i = 1; i < argc; ++i) {
        const QString path = QFile::decodeName(argv[i]);
        if (QFileInfo(path).isFile()) {
            files.append(path);
            continue;
        }
        QDirIterator it(path, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        QStringList found;
        while (it.hasNext())
            found.append(it.next());
        found.sort();
        files += found;
    }
    return files;
}

} // namespace

int main(int argc, char **argv)
{
    const QStringList files = inputFiles(argc, argv);
    // An empty or missing corpus would make the test pass without running anything.
    if (files.isEmpty()) {
        std::fprintf(stderr, "No corpus files found.\n");
        return 1;
    }
    for (const QString &path : files) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "Cannot read %s\n", qPrintable(path));
            return 1;
        }
        const QByteArray bytes = file.readAll();
        // Named before it runs, so that a crash report says which input caused it.
        std::printf("%s\n", qPrintable(path));
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(bytes.constData()),
                               size_t(bytes.size()));
    }
    std::printf("Replayed %lld inputs.\n", static_cast<long long>(files.size()));
    return 0;
}
