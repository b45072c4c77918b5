#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// Every test binary runs with a private per-user data folder, so working copies and backups
// made by tests never touch the real ones and never leak from one run into the next.
int main(int argc, char **argv)
{
    QTemporaryDir dataHome;
    qputenv("XDG_DATA_HOME", QFile::encodeName(dataHome.path()));
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(u"Fablery MCP"_s);
    QCoreApplication::setOrganizationName(u"Tallowick Works"_s);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
