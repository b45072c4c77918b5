#pragma once

// All fifteen content classes, for code that handles every type (the folder reader and writer,
// object lookup) and the two operations that need to know them all.

#include "core/canvas.h"
#include "core/chart.h"
#include "core/comment.h"
#include "core/contentobject.h"
#include "core/document.h"
#include "core/entity.h"
#include "core/language.h"
#include "core/map.h"
#include "core/media.h"
#include "core/randomtable.h"
#include "core/source.h"
#include "core/spreadsheet.h"
#include "core/statblock.h"
#include "core/task.h"
#include "core/timeline.h"
#include "core/timelineevent.h"

#include <memory>

namespace fb::core {

// A new object of the given type with that id and every field at its default; null for a
// code outside the fifteen types.
std::unique_ptr<ContentObject> createContentObject(ObjectType type, const QUuid &id);

// The name an object is known by: its title, the name of an entity or language, or the file
// name of a media item's asset. A comment has no title and gives an empty text.
QString objectTitle(const ContentObject &object);

} // namespace fb::core
