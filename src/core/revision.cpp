#include "core/revision.h"

#include <atomic>

namespace fb::core {

quint64 nextRevision()
{
    static std::atomic<quint64> counter{0};
    return ++counter;
}

} // namespace fb::core
