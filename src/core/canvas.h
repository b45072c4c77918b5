#pragma once

#include "core/contentobject.h"

#include <QList>

namespace fb::core {

// Canvases are laid out in the desktop application, which may store members this version does
// not know; cards and connections keep them in preservedProperties, written back untouched.

// A card on a research canvas, showing one object at a place on the board.
struct CanvasCard
{
    QUuid id;
    QUuid objectId;
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    QVariantMap preservedProperties;

    bool operator==(const CanvasCard &) const = default;
};

// A line between two cards, named by their card ids.
struct CanvasConnection
{
    QUuid fromCardId;
    QUuid toCardId;
    QString label;
    QVariantMap preservedProperties;

    bool operator==(const CanvasConnection &) const = default;
};

// A free board of cards and the connections between them.
class Canvas final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Canvas;

    explicit Canvas(const QUuid &id = QUuid::createUuid());
    explicit Canvas(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Canvas() override;

    const QString &title() const { return m_title; }
    void setTitle(const QString &title)
    {
        m_title = title;
        markChanged();
    }

    const QList<CanvasCard> &cards() const { return m_cards; }
    void setCards(const QList<CanvasCard> &cards)
    {
        m_cards = cards;
        markChanged();
    }

    const QList<CanvasConnection> &connections() const { return m_connections; }
    void setConnections(const QList<CanvasConnection> &connections)
    {
        m_connections = connections;
        markChanged();
    }

private:
    QString m_title;
    QList<CanvasCard> m_cards;
    QList<CanvasConnection> m_connections;
};

} // namespace fb::core
