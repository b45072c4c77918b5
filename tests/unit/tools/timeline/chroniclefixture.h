#pragma once

#include "core/project.h"
#include "support/toolfixture.h"

#include <QJsonDocument>
#include <QStringList>

namespace fb::test {

// Tool arguments written as JSON text, which keeps tables of calls short and readable.
inline QJsonObject json(const char *text)
{
    return QJsonDocument::fromJson(QByteArray(text)).object();
}

// The chronicle test project. Its calendar has four months of unequal length (Thawing 30,
// Highsun 45, Harvestmoon 28, Long Night 12: 115 days a year) and the era label "Third Age".
// It holds the timelines "Main Story", "Old Wars" and the AI-excluded "Hidden Chronicle";
// characters and places with aliases ("Rusk" names both Jory and Tam Rusk), of which Ossian and
// Hollow Vault are excluded from AI; and the eras "Age of Sail" and "The Long Peace".
class ChronicleFixture : public ToolFixture
{
protected:
    ChronicleFixture()
        : ToolFixture(QStringLiteral("projects/chronicle"))
    {}

    using ToolFixture::fails;
    using ToolFixture::ok;
    QString ok(const char *tool, const char *arguments = "{}")
    {
        return ok(QString::fromUtf8(tool), json(arguments));
    }
    QString fails(const char *tool, const char *arguments = "{}")
    {
        return fails(QString::fromUtf8(tool), json(arguments));
    }

    core::Project &project() { return workspace().project(); }

    // The lines "get_timeline" gives for one timeline.
    QStringList timelineLines(const QString &title)
    {
        return ok(QStringLiteral("get_timeline"), {{QStringLiteral("timeline"), title}}).split(u'\n');
    }

    // The line of the event with this title in a timeline's listing; empty when it is not listed.
    QString eventLine(const QString &timeline, const QString &title)
    {
        const QString marker = QStringLiteral(" -- **%1**").arg(title);
        for (const QString &line : timelineLines(timeline)) {
            if (line.contains(marker))
                return line;
        }
        return QString();
    }
};

// The eras as every listing of the chronicle ends, in story order.
inline const QString chronicleEras = QStringLiteral(
    "## Eras\n"
    "- The Long Peace: 1 Thawing, Year 900 Third Age to 1 Thawing, Year 1100 Third Age\n"
    "- Age of Sail: 1 Thawing, Year 1200 Third Age to 1 Thawing, Year 1260 Third Age");

} // namespace fb::test
