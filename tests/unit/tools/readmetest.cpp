// The README lists the tools the server offers, family by family. The list is made from the tool
// definitions themselves, so it cannot go stale: when a tool is added, renamed or described
// anew, this test fails and shows the list to paste (or rewrites it with FB_UPDATE_README=1).

#include "support/toolfixture.h"
#include "tools/registration.h"

#include <QFile>
#include <QJsonArray>
#include <QRegularExpression>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString beginMarker = u"<!-- tools: generated from the tool definitions -->\n"_s;
const QString endMarker = u"<!-- tools: end -->\n"_s;

// The first sentence of a description: up to the first full stop followed by a space.
QString firstSentence(const QString &description)
{
    const QRegularExpressionMatch end = QRegularExpression(u"\\.(\\s|$)"_s).match(description);
    return end.hasMatch() ? description.left(end.capturedStart() + 1) : description;
}

QString toolList()
{
    QString text;
    for (const fb::app::ToolFamily &family : fb::app::toolFamilies()) {
        if (family.tools.empty())
            continue;
        text += u"\n**%1** (%2 tools)\n\n"_s.arg(family.title).arg(family.tools.size());
        for (const fb::app::ToolDefinition &tool : family.tools)
            text += u"- `%1`: %2\n"_s.arg(tool.name, firstSentence(tool.description));
    }
    return text + u'\n';
}

class Readme : public fb::test::ToolFixture
{};

TEST_F(Readme, ListsTheFamiliesInTheOrderTheServerRegistersThem)
{
    QStringList fromFamilies;
    for (const fb::app::ToolFamily &family : fb::app::toolFamilies()) {
        for (const fb::app::ToolDefinition &tool : family.tools)
            fromFamilies.append(tool.name);
    }
    QStringList listed;
    for (const QJsonValue &tool : m_server->listTools().value("tools"_L1).toArray())
        listed.append(tool.toObject().value("name"_L1).toString());
    EXPECT_EQ(fromFamilies, listed);
}

TEST_F(Readme, ListsEveryToolAsTheDefinitionsDescribeIt)
{
    const QString path = QStringLiteral(FB_SOURCE_DIR "/README.md");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QString readme = QString::fromUtf8(file.readAll());
    file.close();
    const qsizetype begin = readme.indexOf(beginMarker);
    const qsizetype end = readme.indexOf(endMarker);
    ASSERT_GE(begin, 0) << "the README lacks the marker " << beginMarker.toStdString();
    ASSERT_GT(end, begin);
    const qsizetype start = begin + beginMarker.size();
    const QString expected = toolList();
    if (qEnvironmentVariableIsSet("FB_UPDATE_README")
        && readme.mid(start, end - start) != expected) {
        readme.replace(start, end - start, expected);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(readme.toUtf8());
        return;
    }
    EXPECT_EQ(readme.mid(start, end - start), expected)
        << "Paste this between the README's tool markers, or run with FB_UPDATE_README=1:\n"
        << expected.toStdString();
}

} // namespace
