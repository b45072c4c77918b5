#include "core/task.h"

using namespace Qt::StringLiterals;

namespace fb::core {

Task::Task(const QUuid &id)
    : Task(QString(), id)
{}

Task::Task(const QString &title, const QUuid &id)
    : ContentObject(staticType, id)
    , m_title(title)
    , m_board(defaultBoard())
    , m_status(defaultStatus())
{}

Task::~Task() = default;

QString Task::defaultBoard()
{
    return u"Tasks"_s;
}

QString Task::defaultStatus()
{
    return u"To Do"_s;
}

} // namespace fb::core
