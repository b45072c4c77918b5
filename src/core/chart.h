#pragma once

#include "core/contentobject.h"

#include <QList>

namespace fb::core {

// One named series, ideally with one value per category.
struct ChartSeries
{
    QString name;
    QList<double> values;

    bool operator==(const ChartSeries &) const = default;
};

// The whole definition of a chart, which its edit command replaces in one step.
struct ChartRecord
{
    QString title;
    ChartKind kind = ChartKind::Bar;
    QStringList categories;
    QList<ChartSeries> series;
    QString valueAxisTitle;
    QString categoryAxisTitle;

    bool operator==(const ChartRecord &) const = default;
};

// A data chart of category labels and numeric series.
class Chart final : public ContentObject
{
public:
    static constexpr ObjectType staticType = ObjectType::Chart;

    explicit Chart(const QUuid &id = QUuid::createUuid());
    explicit Chart(const QString &title, const QUuid &id = QUuid::createUuid());
    ~Chart() override;

    const ChartRecord &record() const { return m_record; }
    void setRecord(const ChartRecord &record)
    {
        m_record = record;
        markChanged();
    }

    const QString &title() const { return m_record.title; }
    void setTitle(const QString &title)
    {
        m_record.title = title;
        markChanged();
    }

    ChartKind kind() const { return m_record.kind; }
    void setKind(ChartKind kind)
    {
        m_record.kind = kind;
        markChanged();
    }

    const QStringList &categories() const { return m_record.categories; }
    void setCategories(const QStringList &labels)
    {
        m_record.categories = labels;
        markChanged();
    }

    const QList<ChartSeries> &series() const { return m_record.series; }
    void setSeries(const QList<ChartSeries> &series)
    {
        m_record.series = series;
        markChanged();
    }

    const QString &valueAxisTitle() const { return m_record.valueAxisTitle; }
    void setValueAxisTitle(const QString &title)
    {
        m_record.valueAxisTitle = title;
        markChanged();
    }

    const QString &categoryAxisTitle() const { return m_record.categoryAxisTitle; }
    void setCategoryAxisTitle(const QString &title)
    {
        m_record.categoryAxisTitle = title;
        markChanged();
    }

private:
    ChartRecord m_record;
};

} // namespace fb::core
