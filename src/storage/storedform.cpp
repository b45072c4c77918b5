#include "storage/storedform.h"

#include <QJsonDocument>

namespace fb::app {

QJsonObject keepWhatWasNotUnderstood(QJsonObject current, const QByteArray &storedBytes,
                                     const StoredFormReading &understand)
{
    const QJsonDocument document = QJsonDocument::fromJson(storedBytes);
    if (!document.isObject())
        return current;
    const QJsonObject stored = document.object();
    const std::optional<QJsonObject> understood = understand(stored);
    if (!understood)
        return current;
    for (auto it = stored.constBegin(); it != stored.constEnd(); ++it) {
        const QJsonValue asRead = understood->value(it.key());
        if (it.value() == asRead)
            continue; // the model kept this value exactly
        // The model lost something here; keep the file's value unless the change set a new one.
        if (current.value(it.key()) == asRead)
            current.insert(it.key(), it.value());
    }
    return current;
}

} // namespace fb::app
