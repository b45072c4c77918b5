#pragma once

#include <QtGlobal>

namespace fb::core {

// Hands out change stamps from one counter for the whole process. Every setter of the model
// stamps what it changed with a fresh value, so two different states never share a stamp, even
// across objects, categories or a reloaded project; the storage layer remembers the stamp it
// last wrote and skips whatever still carries it.
quint64 nextRevision();

// The stamp handed out last. It moves whenever anything in any model changes, so a value
// derived from a model can be kept for as long as this stays the same.
quint64 latestRevision();

} // namespace fb::core
