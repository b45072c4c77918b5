#pragma once

#include "core/contentobject.h"

#include <QList>
#include <QVariant>

namespace fb::core {

// A note drawn on a media item. The desktop application may store more members (its
// geometry, for one); they are kept in preservedProperties and written back untouched.
struct Annotation
{
    QString type;
    QString color;
    QString text;
    QVariantMap preservedProperties;

    bool operator==(const Annotation &) const = default;
};

// An image, audio, video or document kept as a project asset. It has no title of its own;
// lookups and listings use the file name of its asset path.
class Media final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Media;

    explicit Media(const QUuid &id = QUuid::createUuid());
    ~Media() override;

    // Kept as stored ("image", "audio", ...) and shown as stored, since the desktop
    // application decides the set of kinds.
    const QString &kind() const { return m_kind; }
    void setKind(const QString &kind)
    {
        m_kind = kind;
        markChanged();
    }

    const QString &caption() const { return m_caption; }
    void setCaption(const QString &caption)
    {
        m_caption = caption;
        markChanged();
    }

    const QString &assetPath() const { return m_assetPath; }
    void setAssetPath(const QString &path)
    {
        m_assetPath = path;
        markChanged();
    }

    const QList<Annotation> &annotations() const { return m_annotations; }
    void setAnnotations(const QList<Annotation> &annotations)
    {
        m_annotations = annotations;
        markChanged();
    }

    // The crop as the desktop application stored it. No tool reads it and its layout belongs to
    // that application, so it is carried as an opaque value; an invalid QVariant means none.
    const QVariant &crop() const { return m_crop; }
    void setCrop(const QVariant &crop)
    {
        m_crop = crop;
        markChanged();
    }

private:
    QString m_kind;
    QString m_caption;
    QString m_assetPath;
    QList<Annotation> m_annotations;
    QVariant m_crop;
};

// The file name of a media item's asset path: the text after the last "/" or "\", or
// "(untitled media)" when the path is empty.
QString mediaTitle(const Media &media);

} // namespace fb::core
