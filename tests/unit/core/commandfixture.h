#pragma once

#include "core/contentobjects.h"
#include "core/project.h"

#include <QByteArray>

#include <gtest/gtest.h>

// A field definition with the given key, label and type and every other member at its default.
fb::core::FieldDefinition fieldDefinition(const QString &key, const QString &label,
                                          fb::core::FieldType type = fb::core::FieldType::Text);

// A small project with one object of every kind the commands touch, and a snapshot of the whole
// project in its stored form, so that a round trip can be compared byte for byte.
class CommandTest : public ::testing::Test
{
protected:
    CommandTest();

    // Every object, every category and the project settings, serialised.
    QByteArray snapshot() const;

    fb::core::Document *addDocument(const QString &title, qint32 sortIndex,
                                    const QUuid &parentId = QUuid());
    template<typename T>
    T *add(std::unique_ptr<T> object)
    {
        return fb::core::objectCast<T>(project.addObject(std::move(object)));
    }

    fb::core::Project project;

    // The manuscript: Part One (Opening, Middle, End) and Part Two at the top level.
    fb::core::Document *partOne = nullptr;
    fb::core::Document *opening = nullptr;
    fb::core::Document *middle = nullptr;
    fb::core::Document *end = nullptr;
    fb::core::Document *partTwo = nullptr;

    fb::core::Task *task = nullptr;
    // Filed under People, a subcategory of Cast; People has the fields summary, eye colour, age.
    fb::core::Entity *mara = nullptr;
    QUuid cast;
    QUuid people;
    fb::core::Map *map = nullptr;
    fb::core::Chart *chart = nullptr;
    fb::core::Spreadsheet *sheet = nullptr;
    fb::core::Language *language = nullptr;
    fb::core::RandomTable *table = nullptr;
    fb::core::Source *source = nullptr;
    fb::core::StatBlock *statBlock = nullptr;
    fb::core::TimelineEvent *event = nullptr;
    fb::core::Media *media = nullptr;
    fb::core::Comment *comment = nullptr;
    // Two cards, joined by one connection.
    fb::core::Canvas *canvas = nullptr;
    QUuid firstCard;
    QUuid secondCard;
};
