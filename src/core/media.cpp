#include "core/media.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace fb::core {

Media::Media(const QUuid &id)
    : ContentObject(staticType, id)
{}

Media::~Media() = default;

QString mediaTitle(const Media &media)
{
    const QString &path = media.assetPath();
    if (path.isEmpty())
        return u"(untitled media)"_s;
    const qsizetype cut = std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
    return path.mid(cut + 1);
}

} // namespace fb::core
