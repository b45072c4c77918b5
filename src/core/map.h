#pragma once

#include "core/contentobject.h"

#include <QList>

namespace fb::core {

// Map features are drawn by the desktop application, which may store members this version does
// not know; each feature keeps them in preservedProperties so they are written back untouched.

// A position as fractions (0 to 1) of the map image's width and height, from the top-left.
struct MapPoint
{
    double x = 0;
    double y = 0;

    bool operator==(const MapPoint &) const = default;
};

struct MapPin
{
    QString label;
    QString note;
    MapPoint position;
    QVariantMap preservedProperties;

    bool operator==(const MapPin &) const = default;
};

// A polygon outlining a codex place, or leading to a more detailed map.
struct MapRegion
{
    QString label;
    QList<MapPoint> points;
    QUuid linkedEntityId;
    QUuid linkedMapId;
    QString layer;
    bool revealed = true; // false hides it from players in the desktop application
    QVariantMap preservedProperties;

    bool operator==(const MapRegion &) const = default;
};

// An undirected travel connection between two location entities, in the map's distance unit.
struct MapRoute
{
    QUuid fromEntityId;
    QUuid toEntityId;
    double distance = 0;
    QString note;
    QVariantMap preservedProperties;

    bool operator==(const MapRoute &) const = default;
};

// A marker standing for a character or thing.
struct MapToken
{
    QString label;
    QString color; // "#RRGGBB"
    QUuid entityId;
    MapPoint position;
    QVariantMap preservedProperties;

    bool operator==(const MapToken &) const = default;
};

// An image with pins, regions, routes and tokens drawn on it, and its travel scale.
class Map final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Map;

    explicit Map(const QUuid &id = QUuid::createUuid());
    explicit Map(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Map() override;

    const QString &title() const { return m_title; }
    void setTitle(const QString &title)
    {
        m_title = title;
        markChanged();
    }

    const QString &imageAssetPath() const { return m_imageAssetPath; }
    void setImageAssetPath(const QString &path)
    {
        m_imageAssetPath = path;
        markChanged();
    }

    const QList<MapPin> &pins() const { return m_pins; }
    void setPins(const QList<MapPin> &pins)
    {
        m_pins = pins;
        markChanged();
    }

    const QList<MapRegion> &regions() const { return m_regions; }
    void setRegions(const QList<MapRegion> &regions)
    {
        m_regions = regions;
        markChanged();
    }

    const QList<MapRoute> &routes() const { return m_routes; }
    void setRoutes(const QList<MapRoute> &routes)
    {
        m_routes = routes;
        markChanged();
    }

    const QList<MapToken> &tokens() const { return m_tokens; }
    void setTokens(const QList<MapToken> &tokens)
    {
        m_tokens = tokens;
        markChanged();
    }

    // Distance units per hour; 0 or less means not set.
    double travelSpeedPerHour() const { return m_travelSpeedPerHour; }
    void setTravelSpeedPerHour(double speed)
    {
        m_travelSpeedPerHour = speed;
        markChanged();
    }

    const QString &distanceUnit() const { return m_distanceUnit; }
    void setDistanceUnit(const QString &unit)
    {
        m_distanceUnit = unit;
        markChanged();
    }

    // The distance the image's full width spans; 0 or less means not set.
    double widthDistance() const { return m_widthDistance; }
    void setWidthDistance(double distance)
    {
        m_widthDistance = distance;
        markChanged();
    }

    GridKind gridKind() const { return m_gridKind; }
    void setGridKind(GridKind kind)
    {
        m_gridKind = kind;
        markChanged();
    }

    qint32 gridColumns() const { return m_gridColumns; }
    void setGridColumns(qint32 columns)
    {
        m_gridColumns = columns;
        markChanged();
    }

    const QString &gridColor() const { return m_gridColor; }
    void setGridColor(const QString &color)
    {
        m_gridColor = color;
        markChanged();
    }

private:
    QString m_title;
    QString m_imageAssetPath;
    QList<MapPin> m_pins;
    QList<MapRegion> m_regions;
    QList<MapRoute> m_routes;
    QList<MapToken> m_tokens;
    double m_travelSpeedPerHour = 0;
    QString m_distanceUnit;
    double m_widthDistance = 0;
    GridKind m_gridKind = GridKind::None;
    qint32 m_gridColumns = 0;
    QString m_gridColor;
};

} // namespace fb::core
