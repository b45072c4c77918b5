#include "core/commands/canvascommands.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::core {

AddCanvasConnectionCommand::AddCanvasConnectionCommand(Project &project, const QUuid &canvasId,
                                                       CanvasConnection connection)
    : LookupEditCommand(project, canvasId)
    , m_connection(std::move(connection))
{}

QList<CanvasConnection> AddCanvasConnectionCommand::get(const Canvas &canvas) const
{
    return canvas.connections();
}

void AddCanvasConnectionCommand::set(Canvas &canvas, const QList<CanvasConnection> &connections)
{
    canvas.setConnections(connections);
}

QList<CanvasConnection> AddCanvasConnectionCommand::edited(QList<CanvasConnection> connections) const
{
    connections.append(m_connection);
    return connections;
}

QString AddCanvasConnectionCommand::label() const
{
    return u"Connect cards"_s;
}

RemoveCanvasCardCommand::RemoveCanvasCardCommand(Project &project, const QUuid &canvasId,
                                                 const QUuid &cardId)
    : LookupEditCommand(project, canvasId)
    , m_cardId(cardId)
{}

CanvasBoard RemoveCanvasCardCommand::get(const Canvas &canvas) const
{
    return {canvas.cards(), canvas.connections()};
}

void RemoveCanvasCardCommand::set(Canvas &canvas, const CanvasBoard &board)
{
    canvas.setCards(board.cards);
    canvas.setConnections(board.connections);
}

CanvasBoard RemoveCanvasCardCommand::edited(CanvasBoard board) const
{
    board.cards.removeIf([this](const CanvasCard &card) { return card.id == m_cardId; });
    board.connections.removeIf([this](const CanvasConnection &connection) {
        return connection.fromCardId == m_cardId || connection.toCardId == m_cardId;
    });
    return board;
}

QString RemoveCanvasCardCommand::label() const
{
    return u"Remove card"_s;
}

SetCanvasCardCommand::SetCanvasCardCommand(Project &project, const QUuid &canvasId,
                                           const CanvasCard &card)
    : LookupSwapCommand(project, canvasId, card)
    , m_cardId(card.id)
{}

std::optional<CanvasCard> SetCanvasCardCommand::get(const Canvas &canvas) const
{
    const QList<CanvasCard> &cards = canvas.cards();
    const auto card = std::find_if(cards.cbegin(), cards.cend(),
                                   [this](const CanvasCard &c) { return c.id == m_cardId; });
    return card == cards.cend() ? std::nullopt : std::optional<CanvasCard>(*card);
}

void SetCanvasCardCommand::set(Canvas &canvas, const std::optional<CanvasCard> &card)
{
    if (!card)
        return;
    QList<CanvasCard> cards = canvas.cards();
    const auto same = std::find_if(cards.begin(), cards.end(),
                                   [this](const CanvasCard &c) { return c.id == m_cardId; });
    if (same == cards.end())
        return;
    *same = *card;
    canvas.setCards(cards);
}

QString SetCanvasCardCommand::label() const
{
    return u"Move card"_s;
}

} // namespace fb::core
