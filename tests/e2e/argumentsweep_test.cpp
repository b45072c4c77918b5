#include "support/serverprocess.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using fb::test::ServerProcess;

using namespace Qt::StringLiterals;

namespace {

const QString missingName = u"No Such Thing 7f3a"_s;

// Values that name real things in the codex test project, by argument name. A call that probes
// one argument gives the tool's other required arguments these values, so that the probe gets
// past "missing argument" to the code that reads it. A tool whose required arguments have
// other names is still swept, only less deeply.
const QJsonObject plausibleValues{
    {u"category"_s, u"Characters"_s},
    {u"name"_s, u"Pell"_s},
    {u"label"_s, u"Nickname"_s},
    {u"field"_s, u"role"_s},
    {u"position"_s, 1},
    {u"new_name"_s, u"Young Pell"_s},
    {u"audiences"_s, QJsonArray{u"Beta readers"_s}},
    {u"excluded"_s, true},
    {u"query"_s, u"harbour"_s},
    {u"body"_s, u"A note from the sweep."_s},
    {u"comment"_s, u"a0de0000-0000-4000-8000-000000000021"_s},
    {u"text"_s, u"More words."_s},
    {u"title"_s, u"Chapter One"_s},
    {u"find"_s, u"lantern"_s},
};

// The JSON types a schema type admits; "integer" travels as a JSON number.
QString jsonTypeOf(const QString &schemaType)
{
    return schemaType == u"integer" ? u"number"_s : schemaType;
}

QJsonValue valueOfType(const QString &jsonType)
{
    if (jsonType == u"string")
        return u"true"_s; // reads as a boolean to a careless reader
    if (jsonType == u"number")
        return 1;
    if (jsonType == u"boolean")
        return true;
    if (jsonType == u"array")
        return QJsonArray{missingName};
    return QJsonObject{{u"name"_s, missingName}};
}

QString controlCharacters()
{
    QString text;
    for (char16_t c = 0; c < 0x20; ++c)
        text.append(QChar(c));
    text.append(QChar(0x7f));
    return text;
}

// Bad values inside an array or an object argument: each bad element alone, and for arrays of
// records a record whose every field holds the same bad value.
QList<std::pair<QString, QJsonValue>> containedValues(const QJsonObject &property)
{
    const QList<std::pair<QString, QJsonValue>> elements{
        {u"null"_s, QJsonValue::Null},       {u"an empty string"_s, QString()},
        {u"a negative number"_s, -1},        {u"a boolean"_s, false},
        {u"an unknown name"_s, missingName}, {u"an array"_s, QJsonArray{}},
        {u"an object"_s, QJsonObject{}},
    };
    QList<std::pair<QString, QJsonValue>> values;
    const QString type = property.value(u"type"_s).toString();
    if (type == u"array") {
        const QJsonObject fields = property.value(u"items"_s)[u"properties"_s].toObject();
        for (const auto &[what, element] : elements) {
            values.append({u"an array holding "_s + what, QJsonArray{element}});
            if (fields.isEmpty())
                continue;
            QJsonObject record;
            for (auto field = fields.begin(); field != fields.end(); ++field)
                record.insert(field.key(), element);
            values.append({u"an array of a record of "_s + what, QJsonArray{record}});
        }
    } else if (type == u"object") {
        for (const auto &[what, element] : elements)
            values.append({u"an object holding "_s + what, QJsonObject{{missingName, element}}});
    }
    return values;
}

struct Probe
{
    QString label;
    QJsonObject arguments;
    bool sendsArguments = true;
};

// Every call the sweep makes to one tool: no arguments at all, the plausible ones alone, then
// each argument in turn set to each bad value beside the plausible others.
QList<Probe> probesFor(const QJsonObject &schema)
{
    const QJsonObject properties = schema.value(u"properties"_s).toObject();
    QJsonObject plausible;
    for (const QJsonValue &name : schema.value(u"required"_s).toArray()) {
        if (plausibleValues.contains(name.toString()))
            plausible.insert(name.toString(), plausibleValues.value(name.toString()));
    }

    QList<Probe> probes{{u"no arguments object"_s, {}, false},
                        {u"empty arguments"_s, {}},
                        {u"plausible arguments"_s, plausible}};
    const QList<std::pair<QString, QJsonValue>> badValues{
        {u"null"_s, QJsonValue::Null},
        {u"empty string"_s, QString()},
        {u"1 MB string"_s, QString(1024 * 1024, u'x')},
        {u"control characters"_s, controlCharacters()},
        {u"unknown name"_s, missingName},
    };
    const QStringList jsonTypes{u"string"_s, u"number"_s, u"boolean"_s, u"array"_s, u"object"_s};
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        const QString declared = jsonTypeOf(it.value().toObject().value(u"type"_s).toString());
        QList<std::pair<QString, QJsonValue>> values;
        for (const QString &type : jsonTypes) {
            if (!declared.isEmpty() && type != declared)
                values.append({u"a "_s + type, valueOfType(type)});
        }
        values += badValues;
        values += containedValues(it.value().toObject());
        for (const auto &[what, value] : values) {
            QJsonObject arguments = plausible;
            arguments.insert(it.key(), value);
            probes.append({it.key() + u" as "_s + what, arguments});
        }
    }
    return probes;
}

QString shortened(const QByteArray &answer)
{
    return QString::fromUtf8(answer.left(300));
}

// Every tool the server lists, called with missing, mistyped, empty, huge, unprintable and
// unknown arguments. Each call must come back as a tool result, never as a protocol error or a
// dead server, and a call that fails must leave every file of the project as it was.
TEST(ArgumentSweep, EveryToolAnswersBadArgumentsWithAToolResultAndChangesNothingOnFailure)
{
    // The codex project mounts its library as "../codexlibrary", so both are copied, and both
    // are compared after a failed call.
    QTemporaryDir root;
    for (const QString &name : {u"codex"_s, u"codexlibrary"_s}) {
        ASSERT_TRUE(fb::test::copyFolder(QStringLiteral(FB_TEST_DATA_DIR "/projects/") + name,
                                         root.filePath(name)));
    }
    const QString project = root.filePath(u"codex"_s);
    ServerProcess server({project});

    const QJsonArray tools = server
                                 .request(QJsonObject{{u"jsonrpc"_s, u"2.0"_s},
                                                      {u"id"_s, u"list"_s},
                                                      {u"method"_s, u"tools/list"_s}})
                                 .value(u"result"_s)[u"tools"_s]
                                 .toArray();
    ASSERT_GT(tools.size(), 0);

    int id = 0;
    int calls = 0;
    int refusals = 0;
    int changes = 0;
    // The files as they are before the next call; read again only after a call changed them.
    auto files = fb::test::folderContents(root.path());
    for (const QJsonValue &tool : tools) {
        const QString name = tool[u"name"_s].toString();
        for (const Probe &probe : probesFor(tool[u"inputSchema"_s].toObject())) {
            SCOPED_TRACE((name + u": "_s + probe.label).toStdString());
            QJsonObject params{{u"name"_s, name}};
            if (probe.sendsArguments)
                params.insert(u"arguments"_s, probe.arguments);
            const QJsonObject request{{u"jsonrpc"_s, u"2.0"_s},
                                      {u"id"_s, ++id},
                                      {u"method"_s, u"tools/call"_s},
                                      {u"params"_s, params}};
            server.send(QJsonDocument(request).toJson(QJsonDocument::Compact));
            const QByteArray line = server.readLine();
            ++calls;
            ASSERT_FALSE(line.isEmpty()) << "no answer: the server died or hung";
            const QJsonObject answer = QJsonDocument::fromJson(line).object();
            const QJsonObject result = answer.value(u"result"_s).toObject();
            const bool isToolResult = answer.value(u"id"_s) == QJsonValue(id)
                                      && result.value(u"content"_s).isArray();
            EXPECT_TRUE(isToolResult) << shortened(line).toStdString();
            refusals += result.value(u"isError"_s).toBool() ? 1 : 0;

            const auto after = fb::test::folderContents(root.path());
            if (after == files)
                continue;
            EXPECT_FALSE(result.value(u"isError"_s).toBool())
                << "a failed call changed the project: " << shortened(line).toStdString();
            // A change that succeeded is taken back, so that every probe meets the same
            // project and the next one finds the objects it names.
            server.call(u"undo_last"_s);
            ++changes;
            files = fb::test::folderContents(root.path());
        }
    }
    std::printf("Swept %d tools with %d calls: %d refused, %d changed the project.\n",
                int(tools.size()), calls, refusals, changes);
    EXPECT_EQ(server.finish(), 0);
}

} // namespace
