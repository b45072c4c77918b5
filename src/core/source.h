#pragma once

#include "core/contentobject.h"

#include <QMap>

namespace fb::core {

// The whole record of a bibliographic source, which its edit command replaces in one step.
struct SourceRecord
{
    SourceKind kind = SourceKind::Book;
    QString title;
    QString citationKey;
    // CSL variable name ("author", "issued", "container-title", ...) to text; authors are one
    // text in BibTeX name-list form.
    QMap<QString, QString> fields;

    bool operator==(const SourceRecord &) const = default;
};

// A bibliographic source of the research library.
class Source final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Source;

    explicit Source(const QUuid &id = QUuid::createUuid());
    explicit Source(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Source() override;

    const SourceRecord &record() const { return m_record; }
    void setRecord(const SourceRecord &record)
    {
        m_record = record;
        markChanged();
    }

    SourceKind kind() const { return m_record.kind; }
    void setKind(SourceKind kind)
    {
        m_record.kind = kind;
        markChanged();
    }

    const QString &title() const { return m_record.title; }
    void setTitle(const QString &title)
    {
        m_record.title = title;
        markChanged();
    }

    const QString &citationKey() const { return m_record.citationKey; }
    void setCitationKey(const QString &key)
    {
        m_record.citationKey = key;
        markChanged();
    }

    const QMap<QString, QString> &fields() const { return m_record.fields; }
    void setFields(const QMap<QString, QString> &fields)
    {
        m_record.fields = fields;
        markChanged();
    }
    QString field(const QString &variable) const { return m_record.fields.value(variable); }

private:
    SourceRecord m_record;
};

} // namespace fb::core
