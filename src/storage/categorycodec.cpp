#include "storage/categorycodec.h"

#include "core/category.h"
#include "storage/storedvalues.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace fb::app {

using namespace core;

Result<std::unique_ptr<Category>> categoryFromJson(const QJsonObject &json, const QString &filePath)
{
    JsonReader reader(json);
    const QUuid id = reader.id("id"_L1);
    const QString name = reader.string("name"_L1);
    if (id.isNull() || name.trimmed().isEmpty()) {
        return makeError(u"Malformed category file: %1"_s.arg(QDir::toNativeSeparators(filePath)));
    }

    QList<FieldDefinition> fields;
    for (const QJsonValue &stored : reader.array("fields"_L1)) {
        if (!stored.isObject()) {
            return makeError(
                u"Malformed field in category: %1"_s.arg(QDir::toNativeSeparators(filePath)));
        }
        JsonReader item(stored.toObject());
        FieldDefinition field;
        field.key = item.string("key"_L1);
        field.label = item.string("label"_L1);
        field.type = item.enumeration("type"_L1, FieldType::Text);
        field.required = item.boolean("required"_L1);
        field.description = item.string("description"_L1);
        field.options = item.strings("options"_L1);
        fields.append(field);
    }

    auto category = std::make_unique<Category>(name, reader.id("parentId"_L1), id);
    category->setFields(fields);
    category->setPreservedProperties(reader.unreadProperties());
    return category;
}

QJsonObject categoryToJson(const Category &category)
{
    QJsonObject json = preservedJson(category.preservedProperties());
    json.insert("id"_L1, idValue(category.id()));
    json.insert("name"_L1, category.name());
    json.insert("parentId"_L1, idValue(category.parentId()));
    json.insert("fields"_L1, jsonArray(category.fields(), [](const FieldDefinition &field) {
                    return QJsonObject{{"key"_L1, field.key},
                                       {"type"_L1, enumName(field.type)},
                                       {"label"_L1, field.label},
                                       {"required"_L1, field.required},
                                       {"description"_L1, field.description},
                                       {"options"_L1, stringArray(field.options)}};
                }));
    return json;
}

} // namespace fb::app
