#include "commandfixture.h"

#include "storage/categorycodec.h"
#include "storage/objectcodec.h"
#include "storage/projectsettingscodec.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using namespace fb::core;

FieldDefinition fieldDefinition(const QString &key, const QString &label, FieldType type)
{
    FieldDefinition field;
    field.key = key;
    field.label = label;
    field.type = type;
    return field;
}

CommandTest::CommandTest()
{
    partOne = addDocument(u"Part One"_s, 0);
    opening = addDocument(u"Opening"_s, 0, partOne->id());
    middle = addDocument(u"Middle"_s, 1, partOne->id());
    end = addDocument(u"End"_s, 2, partOne->id());
    partTwo = addDocument(u"Part Two"_s, 1);
    opening->setBody(u"It was dawn."_s);

    task = add(std::make_unique<Task>(u"Revise the opening"_s));

    auto castCategory = std::make_unique<Category>(u"Cast"_s);
    cast = castCategory->id();
    auto peopleCategory = std::make_unique<Category>(u"People"_s, cast);
    people = peopleCategory->id();
    peopleCategory->setFields({fieldDefinition(u"summary"_s, u"Summary"_s),
                               fieldDefinition(u"eye colour"_s, u"Eye Colour"_s),
                               fieldDefinition(u"age"_s, u"Age"_s, FieldType::Number)});
    project.categories().add(std::move(castCategory));
    project.categories().add(std::move(peopleCategory));

    mara = add(std::make_unique<Entity>(u"Mara"_s));
    mara->setCategoryId(people);
    mara->setValues({{u"eye colour"_s, u"green"_s}, {u"age"_s, u"31"_s}});
    mara->setTags({u"lead"_s});

    map = add(std::make_unique<Map>(u"Coast"_s));
    map->setPins({{u"Inn"_s, u"warm"_s, {0.25, 0.5}, {}}});
    chart = add(std::make_unique<Chart>(u"Deaths per act"_s));
    sheet = add(std::make_unique<Spreadsheet>(u"Ledger"_s));
    sheet->setRowCount(10);
    sheet->setColumnCount(4);
    sheet->setCellText({0, 0}, u"=1+2"_s);
    language = add(std::make_unique<Language>(u"Old Tongue"_s));
    table = add(std::make_unique<RandomTable>(u"Rumours"_s));
    source = add(std::make_unique<Source>(u"On Ships"_s));
    statBlock = add(std::make_unique<StatBlock>(u"Harbour Guard"_s));
    event = add(std::make_unique<TimelineEvent>(u"The landing"_s));
    media = add(std::make_unique<Media>());
    media->setAssetPath(u"assets/harbour.png"_s);

    comment = add(std::make_unique<Comment>());
    comment->setTargetId(opening->id());
    comment->setBody(u"Too slow."_s);

    canvas = add(std::make_unique<Canvas>(u"Board"_s));
    firstCard = QUuid::createUuid();
    secondCard = QUuid::createUuid();
    canvas->setCards({{firstCard, mara->id(), 0, 0, 100, 50, {}},
                      {secondCard, opening->id(), 200, 0, 100, 50, {}}});
    canvas->setConnections({{firstCard, secondCard, u"appears in"_s, {}}});

    project.setAudiences({u"Beta readers"_s});
    project.setPinned({opening->id(), mara->id()});
}

Document *CommandTest::addDocument(const QString &title, qint32 sortIndex, const QUuid &parentId)
{
    auto document = std::make_unique<Document>(title);
    document->setSortIndex(sortIndex);
    document->setParentId(parentId);
    return add(std::move(document));
}

QByteArray CommandTest::snapshot() const
{
    QJsonArray objects;
    for (const ContentObject *object : project.objects())
        objects.append(fb::app::objectToJson(*object));
    QJsonArray categories;
    for (const Category *category : project.categories().all())
        categories.append(fb::app::categoryToJson(*category));
    const QJsonObject whole{{u"settings"_s, fb::app::projectSettingsToJson(project)},
                            {u"objects"_s, objects},
                            {u"categories"_s, categories}};
    return QJsonDocument(whole).toJson();
}
