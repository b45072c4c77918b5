#pragma once

// The commands that change the cards and connections of a research canvas. They hold the
// project and the canvas's id; a step whose canvas is gone does nothing.

#include "core/canvas.h"
#include "core/commands/valuecommands.h"

namespace fb::core {

// The cards and connections of a canvas as one aspect, since removing a card takes the lines
// drawn to it along.
struct CanvasBoard
{
    QList<CanvasCard> cards;
    QList<CanvasConnection> connections;

    bool operator==(const CanvasBoard &) const = default;
};

// Appends a connection between two cards.
class AddCanvasConnectionCommand final : public LookupEditCommand<Canvas, QList<CanvasConnection>>
{
public:
    AddCanvasConnectionCommand(Project &project, const QUuid &canvasId, CanvasConnection connection);
    QString label() const override;

private:
    QList<CanvasConnection> get(const Canvas &canvas) const override;
    void set(Canvas &canvas, const QList<CanvasConnection> &connections) override;
    QList<CanvasConnection> edited(QList<CanvasConnection> connections) const override;

    CanvasConnection m_connection;
};

// Removes a card, by card id, with every connection from or to it; undo puts both lists back as
// they were.
class RemoveCanvasCardCommand final : public LookupEditCommand<Canvas, CanvasBoard>
{
public:
    RemoveCanvasCardCommand(Project &project, const QUuid &canvasId, const QUuid &cardId);
    QString label() const override;

private:
    CanvasBoard get(const Canvas &canvas) const override;
    void set(Canvas &canvas, const CanvasBoard &board) override;
    CanvasBoard edited(CanvasBoard board) const override;

    QUuid m_cardId;
};

// Replaces the card that has the given card's id: its placement and the object it shows. A card
// that is not on the canvas is not added.
class SetCanvasCardCommand final : public LookupSwapCommand<Canvas, std::optional<CanvasCard>>
{
public:
    SetCanvasCardCommand(Project &project, const QUuid &canvasId, const CanvasCard &card);
    QString label() const override;

private:
    std::optional<CanvasCard> get(const Canvas &canvas) const override;
    void set(Canvas &canvas, const std::optional<CanvasCard> &card) override;

    QUuid m_cardId;
};

} // namespace fb::core
