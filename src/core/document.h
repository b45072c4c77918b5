#pragma once

#include "core/contentobject.h"

#include <QDateTime>
#include <QList>

#include <optional>

namespace fb::core {

// A note definition beside the body; the body cites it with "[^id]".
struct Footnote
{
    QString id;
    QString text;
    bool endnote = false;

    bool operator==(const Footnote &) const = default;
};

// A frozen, labelled copy of the body.
struct DocumentVersion
{
    QString label;
    QString body;
    QDateTime createdAt;

    bool operator==(const DocumentVersion &) const = default;
};

// A parked alternative draft; the active draft is always the body itself.
struct DocumentVariant
{
    QString name;
    QString body;

    bool operator==(const DocumentVariant &) const = default;
};

// A prose, screenplay or note document of the manuscript tree.
class Document final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Document;

    explicit Document(const QUuid &id = QUuid::createUuid());
    explicit Document(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Document() override;

    DocumentKind kind() const { return m_kind; }
    void setKind(DocumentKind kind)
    {
        m_kind = kind;
        markChanged();
    }

    const QString &title() const { return m_title; }
    void setTitle(const QString &title)
    {
        m_title = title;
        markChanged();
    }

    // Markdown, or a rich-text HTML document; the document tools tell them apart.
    const QString &body() const { return m_body; }
    void setBody(const QString &body)
    {
        m_body = body;
        markChanged();
    }

    const QString &synopsis() const { return m_synopsis; }
    void setSynopsis(const QString &synopsis)
    {
        m_synopsis = synopsis;
        markChanged();
    }

    const QString &status() const { return m_status; }
    void setStatus(const QString &status)
    {
        m_status = status;
        markChanged();
    }

    const QString &pointOfView() const { return m_pointOfView; }
    void setPointOfView(const QString &pointOfView)
    {
        m_pointOfView = pointOfView;
        markChanged();
    }

    qint32 tensionLevel() const { return m_tensionLevel; }
    void setTensionLevel(qint32 level)
    {
        m_tensionLevel = level;
        markChanged();
    }

    // Story minutes; absent when the scene is not placed in story time.
    std::optional<qint64> sceneInstant() const { return m_sceneInstant; }
    void setSceneInstant(std::optional<qint64> instant)
    {
        m_sceneInstant = instant;
        markChanged();
    }

    // 0 means no target.
    qint32 wordCountTarget() const { return m_wordCountTarget; }
    void setWordCountTarget(qint32 target)
    {
        m_wordCountTarget = target;
        markChanged();
    }

    // Null for a top-level document.
    const QUuid &parentId() const { return m_parentId; }
    void setParentId(const QUuid &parentId)
    {
        m_parentId = parentId;
        markChanged();
    }

    qint32 sortIndex() const { return m_sortIndex; }
    void setSortIndex(qint32 sortIndex)
    {
        m_sortIndex = sortIndex;
        markChanged();
    }

    const QList<QUuid> &sourceIds() const { return m_sourceIds; }
    void setSourceIds(const QList<QUuid> &ids)
    {
        m_sourceIds = ids;
        markChanged();
    }

    const QList<QUuid> &plotThreadIds() const { return m_plotThreadIds; }
    void setPlotThreadIds(const QList<QUuid> &ids)
    {
        m_plotThreadIds = ids;
        markChanged();
    }

    const QString &revisionBaseline() const { return m_revisionBaseline; }
    void setRevisionBaseline(const QString &baseline)
    {
        m_revisionBaseline = baseline;
        markChanged();
    }

    // Oldest first.
    const QList<DocumentVersion> &versions() const { return m_versions; }
    void setVersions(const QList<DocumentVersion> &versions)
    {
        m_versions = versions;
        markChanged();
    }

    const QList<DocumentVariant> &variants() const { return m_variants; }
    void setVariants(const QList<DocumentVariant> &variants)
    {
        m_variants = variants;
        markChanged();
    }

    // Empty while the single unnamed draft is active.
    const QString &activeVariant() const { return m_activeVariant; }
    void setActiveVariant(const QString &name)
    {
        m_activeVariant = name;
        markChanged();
    }

    const QList<Footnote> &footnotes() const { return m_footnotes; }
    void setFootnotes(const QList<Footnote> &footnotes)
    {
        m_footnotes = footnotes;
        markChanged();
    }

private:
    DocumentKind m_kind = DocumentKind::Prose;
    QString m_title;
    QString m_body;
    QString m_synopsis;
    QString m_status;
    QString m_pointOfView;
    qint32 m_tensionLevel = 0;
    std::optional<qint64> m_sceneInstant;
    qint32 m_wordCountTarget = 0;
    QUuid m_parentId;
    qint32 m_sortIndex = 0;
    QList<QUuid> m_sourceIds;
    QList<QUuid> m_plotThreadIds;
    QString m_revisionBaseline;
    QList<DocumentVersion> m_versions;
    QList<DocumentVariant> m_variants;
    QString m_activeVariant;
    QList<Footnote> m_footnotes;
};

// Sibling order, which is also the reading order of the manuscript: ascending sortIndex, then
// title by plain case-sensitive comparison, then id text, so the order is the same after every
// load even for siblings that agree on index and title.
bool precedesSibling(const Document &a, const Document &b);

} // namespace fb::core
