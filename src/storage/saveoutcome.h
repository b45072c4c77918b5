#pragma once

#include <QString>

namespace fb::app {

// How a save ended. A refused save found, before writing anything, that it must not go on (a
// file it would replace was changed by another program, the project is read-only or cannot be
// read); a failed one ran into an error while writing. The difference matters to callers: a
// refusal leaves the disk exactly as it was.
enum class SaveStatus { Saved, Refused, Failed };

struct [[nodiscard]] SaveOutcome
{
    SaveStatus status = SaveStatus::Saved;
    QString message;

    static SaveOutcome saved() { return {}; }
    static SaveOutcome refused(QString message)
    {
        return {SaveStatus::Refused, std::move(message)};
    }
    static SaveOutcome failed(QString message) { return {SaveStatus::Failed, std::move(message)}; }

    bool isSaved() const { return status == SaveStatus::Saved; }
    bool isRefused() const { return status == SaveStatus::Refused; }
};

} // namespace fb::app
