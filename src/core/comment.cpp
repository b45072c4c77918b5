#include "core/comment.h"

namespace fb::core {

Comment::Comment(const QUuid &id)
    : ContentObject(staticType, id)
{}

Comment::~Comment() = default;

} // namespace fb::core
