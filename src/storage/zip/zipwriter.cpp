#include "storage/zip/zipwriter.h"

#include "storage/zip/crc32.h"

#include <QtEndian>

#include <vector>

namespace fb::app {

namespace {

constexpr quint32 kLocalHeaderSignature = 0x04034B50;
constexpr quint32 kCentralHeaderSignature = 0x02014B50;
constexpr quint32 kEndRecordSignature = 0x06054B50;
constexpr quint16 kVersion = 20;
constexpr quint16 kDosDate = 0x0021; // 1 January 1980, the earliest date the format holds
constexpr qsizetype kLocalHeaderSize = 30;
constexpr qsizetype kCentralHeaderSize = 46;
constexpr qsizetype kEndRecordSize = 22;
constexpr qsizetype kMaxNameBytes = 65535;

class ByteSink
{
public:
    explicit ByteSink(qsizetype capacity) { m_bytes.reserve(capacity); }

    void u16(quint16 value)
    {
        char raw[2];
        qToLittleEndian(value, raw);
        m_bytes.append(raw, 2);
    }

    void u32(quint32 value)
    {
        char raw[4];
        qToLittleEndian(value, raw);
        m_bytes.append(raw, 4);
    }

    void bytes(const QByteArray &data) { m_bytes.append(data); }
    qsizetype size() const { return m_bytes.size(); }
    QByteArray take() { return std::move(m_bytes); }

private:
    QByteArray m_bytes;
};

struct PreparedEntry
{
    QByteArray name;
    quint32 crc = 0;
    quint32 size = 0;
    quint32 offset = 0;
};

} // namespace

QByteArray writeZip(const QList<ZipEntry> &entries)
{
    std::vector<PreparedEntry> prepared;
    prepared.reserve(size_t(entries.size()));
    qsizetype total = kEndRecordSize;
    for (const ZipEntry &entry : entries) {
        PreparedEntry p;
        p.name = entry.name.toUtf8().left(kMaxNameBytes);
        p.crc = entry.crc ? *entry.crc : crc32(entry.data);
        p.size = quint32(entry.data.size());
        total += kLocalHeaderSize + kCentralHeaderSize + 2 * p.name.size() + entry.data.size();
        prepared.push_back(std::move(p));
    }

    ByteSink out(total);
    for (size_t i = 0; i < prepared.size(); ++i) {
        PreparedEntry &p = prepared[i];
        p.offset = quint32(out.size());
        out.u32(kLocalHeaderSignature);
        out.u16(kVersion);
        out.u16(0); // flags
        out.u16(0); // method: stored
        out.u16(0); // time
        out.u16(kDosDate);
        out.u32(p.crc);
        out.u32(p.size);
        out.u32(p.size);
        out.u16(quint16(p.name.size()));
        out.u16(0); // extra field length
        out.bytes(p.name);
        out.bytes(entries[qsizetype(i)].data);
    }

    const auto directoryOffset = quint32(out.size());
    for (const PreparedEntry &p : prepared) {
        out.u32(kCentralHeaderSignature);
        out.u16(kVersion); // made by
        out.u16(kVersion); // needed
        out.u16(0);        // flags
        out.u16(0);        // method: stored
        out.u16(0);        // time
        out.u16(kDosDate);
        out.u32(p.crc);
        out.u32(p.size);
        out.u32(p.size);
        out.u16(quint16(p.name.size()));
        out.u16(0); // extra field length
        out.u16(0); // comment length
        out.u16(0); // disk number start
        out.u16(0); // internal attributes
        out.u32(0); // external attributes
        out.u32(p.offset);
        out.bytes(p.name);
    }
    const auto directorySize = quint32(out.size() - directoryOffset);

    const auto count = quint16(prepared.size());
    out.u32(kEndRecordSignature);
    out.u16(0); // this disk
    out.u16(0); // disk with the directory
    out.u16(count);
    out.u16(count);
    out.u32(directorySize);
    out.u32(directoryOffset);
    out.u16(0); // comment length
    return out.take();
}

} // namespace fb::app
