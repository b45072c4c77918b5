#include "core/enumerations.h"

namespace fb::core {

namespace {

template<std::size_t N>
QString lookUp(const std::array<QStringView, N> &table, qint32 code)
{
    const auto index = static_cast<std::size_t>(code);
    return index < table.size() ? table[index].toString() : QString();
}

} // namespace

QString objectTypeNoun(ObjectType type)
{
    static constexpr std::array<QStringView, 15>
        nouns{u"document", u"entity",         u"spreadsheet", u"chart",        u"map",
              u"timeline", u"timeline event", u"media item",  u"source",       u"task",
              u"canvas",   u"comment",        u"language",    u"random table", u"stat block"};
    return lookUp(nouns, static_cast<qint32>(type));
}

QString sourceKindDisplayName(SourceKind kind)
{
    static constexpr std::array<QStringView, 11> displayNames{u"Book",
                                                              u"Book Chapter",
                                                              u"Journal Article",
                                                              u"Magazine Article",
                                                              u"Newspaper Article",
                                                              u"Website",
                                                              u"Report",
                                                              u"Thesis",
                                                              u"Conference Paper",
                                                              u"Manuscript",
                                                              u"Other"};
    return lookUp(displayNames, static_cast<qint32>(kind));
}

} // namespace fb::core
