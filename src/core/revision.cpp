#include "core/revision.h"

#include <atomic>

namespace fb::core {

namespace {

std::atomic<quint64> counter{0};

} // namespace

quint64 nextRevision()
{
    return ++counter;
}

quint64 latestRevision()
{
    return counter.load();
}

} // namespace fb::core
