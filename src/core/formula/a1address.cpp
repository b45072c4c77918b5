#include "core/formula/a1address.h"

#include <limits>

namespace fb::core {

namespace {

constexpr qint64 largestIndex = std::numeric_limits<qint32>::max();

bool isLetter(QChar c)
{
    return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z');
}

} // namespace

std::optional<CellReference> parseCellReference(QStringView text)
{
    CellReference reference;
    qsizetype at = 0;
    if (at < text.size() && text[at] == u'$') {
        reference.isColumnAbsolute = true;
        ++at;
    }
    // Letters count in base 26 with no zero digit: A is 1, Z is 26, AA is 27. The count stops
    // growing once it passes the largest index, so a long run of letters cannot overflow.
    qint64 column = 0;
    const qsizetype lettersStart = at;
    for (; at < text.size() && isLetter(text[at]); ++at) {
        const qint64 digit = text[at].toUpper().unicode() - u'A' + 1;
        column = std::min(column * 26 + digit, largestIndex + 1);
    }
    if (at == lettersStart)
        return std::nullopt;
    if (at < text.size() && text[at] == u'$') {
        reference.isRowAbsolute = true;
        ++at;
    }
    qint64 row = 0;
    const qsizetype digitsStart = at;
    for (; at < text.size() && text[at] >= u'0' && text[at] <= u'9'; ++at)
        row = std::min(row * 10 + (text[at].unicode() - u'0'), largestIndex + 1);
    if (at == digitsStart || at != text.size() || row == 0)
        return std::nullopt;
    reference.address = {qint32(std::min(row - 1, largestIndex)),
                         qint32(std::min(column - 1, largestIndex))};
    return reference;
}

std::optional<CellAddress> parseA1Address(QStringView text)
{
    const std::optional<CellReference> reference = parseCellReference(text);
    if (!reference)
        return std::nullopt;
    return reference->address;
}

QString columnName(qint32 column)
{
    QString letters;
    for (qint64 rest = qint64(column) + 1; rest > 0; rest = (rest - 1) / 26)
        letters.prepend(QChar(u'A' + char16_t((rest - 1) % 26)));
    return letters;
}

QString addressName(CellAddress address)
{
    return columnName(address.column) + QString::number(qint64(address.row) + 1);
}

bool isInGrid(CellAddress address, qint32 rowCount, qint32 columnCount)
{
    return address.row >= 0 && address.column >= 0 && address.row < rowCount
           && address.column < columnCount;
}

} // namespace fb::core
