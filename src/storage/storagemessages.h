#pragma once

#include <QString>

namespace fb::app {

// The sentences the storage layer gives a writer when it will not write, each in one place.

// Another program replaced, removed or created a file that a save would have written.
QString changedOnDiskMessage(const QString &path);
QString removedOnDiskMessage(const QString &path);
QString createdOnDiskMessage(const QString &path);
// The bundle file itself was saved by another program since the server last read or wrote it.
QString bundleChangedOnDiskMessage(const QString &bundlePath);
// The project could not be read the last time another program changed it; `reason` is the
// reader's error, which names the file.
QString projectUnreadableMessage(const QString &reason);
// The project (or the named part of it) cannot be written by this user.
QString projectReadOnlyMessage(const QString &path);

} // namespace fb::app
