#include "storage/storagemessages.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace fb::app {

namespace {

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

// Every refusal ends the same way: nothing happened, and what to do about it.
const QString retryAdvice
    = u" Nothing was changed; the next call works on the project as it is on disk now, so try again."_s;

} // namespace

QString changedOnDiskMessage(const QString &path)
{
    return u"Another program changed %1 since this server last read it."_s.arg(native(path))
           + retryAdvice;
}

QString removedOnDiskMessage(const QString &path)
{
    return u"Another program removed %1 since this server last read it."_s.arg(native(path))
           + retryAdvice;
}

QString createdOnDiskMessage(const QString &path)
{
    return u"Another program created %1 since this server last read the project."_s.arg(native(path))
           + retryAdvice;
}

QString bundleChangedOnDiskMessage(const QString &bundlePath)
{
    return u"Another program saved the project file %1 since this server last read it."_s.arg(
               native(bundlePath))
           + retryAdvice;
}

QString projectUnreadableMessage(const QString &reason)
{
    return u"The project on disk cannot be read right now (%1), so no change is made until it can: "
           u"the file may be half-written by another program, or come from a newer version. "
           u"Reading tools show the project as it was last read."_s.arg(reason);
}

QString projectReadOnlyMessage(const QString &path)
{
    return u"The project is open for reading only: %1 cannot be written. Nothing was changed."_s.arg(
        native(path));
}

} // namespace fb::app
