#include "storage/sha256.h"
#include "storage/zip/crc32.h"
#include "storage/zip/zipwriter.h"
#include "support/printers.h"

#include <QBuffer>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using fb::app::ZipEntry;
using fb::app::ZipStreamWriter;

namespace {

QByteArray randomBytes(qsizetype size, quint32 seed)
{
    QRandomGenerator random(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char &byte : bytes)
        byte = char(random.bounded(256));
    return bytes;
}

void writeFile(const QString &path, const QByteArray &data)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(data), data.size());
}

TEST(ZipStreamWriter, WritesTheSameBytesAsWriteZipAndTheirDigest)
{
    QTemporaryDir dir;
    // Larger than the pieces files are copied in, and not a multiple of them.
    const QByteArray media = randomBytes(700001, 5);
    const QString mediaPath = dir.filePath(u"map.png"_s);
    writeFile(mediaPath, media);
    const QList<ZipEntry> entries = {
        {u"project.json"_s, "{\"name\": \"Harbour\"}"},
        {u"objects/"_s, {}},
        {u"objects/empty.json"_s, {}},
        {u"media/map.png"_s, media},
        {u"objects/known.json"_s, "{}", fb::app::crc32("{}")},
    };

    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    ZipStreamWriter writer(&buffer);
    for (const ZipEntry &entry : entries) {
        const auto added = entry.name == u"media/map.png"_s
                               ? writer.addFile(entry.name, mediaPath, media.size(),
                                                fb::app::crc32(media))
                               : writer.addBytes(entry.name, entry.data, entry.crc);
        ASSERT_TRUE(added) << added.error().toStdString();
    }
    ASSERT_TRUE(writer.finish());

    const QByteArray expected = fb::app::writeZip(entries);
    EXPECT_TRUE(buffer.data() == expected);
    EXPECT_EQ(writer.size(), expected.size());
    EXPECT_EQ(writer.sha256().toHex(), fb::app::sha256(expected).toHex());
}

TEST(ZipStreamWriter, FailsWhenAFileChangedSinceItWasRecorded)
{
    const QByteArray recorded = randomBytes(300000, 9);
    QByteArray sameSizeOtherBytes = recorded;
    sameSizeOtherBytes[299999] = char(sameSizeOtherBytes[299999] ^ 1);
    const QString changed = u"The file \"media/map.png\" changed while the archive was being "
                            u"written; write the archive again."_s;
    struct Case
    {
        const char *name;
        std::optional<QByteArray> onDisk; // absent: the file is gone
        QString error;
    };
    const Case cases[] = {
        {"grown", recorded + "x", changed},
        {"shrunk", recorded.chopped(1), changed},
        {"same size, other bytes", sameSizeOtherBytes, changed},
        {"removed", std::nullopt,
         u"The file \"media/map.png\" could not be read while the archive was being written."_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString path = dir.filePath(u"map.png"_s);
        if (c.onDisk)
            writeFile(path, *c.onDisk);
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        ZipStreamWriter writer(&buffer);
        const auto added = writer.addFile(u"media/map.png"_s, path, recorded.size(),
                                          fb::app::crc32(recorded));
        ASSERT_FALSE(added);
        EXPECT_EQ(added.error(), c.error);
        // The archive is unusable from then on.
        EXPECT_EQ(writer.addBytes(u"project.json"_s, "{}").error(), c.error);
        EXPECT_EQ(writer.finish().error(), c.error);
    }
}

TEST(Sha256, GivesTheSameDigestWhateverPiecesTheDataArrivesIn)
{
    const QByteArray data = randomBytes(20000, 3);
    const QByteArray expected = fb::app::sha256(data);
    for (const qsizetype piece : {1, 55, 63, 64, 65, 128, 4097}) {
        SCOPED_TRACE(piece);
        fb::app::Sha256 hash;
        for (qsizetype pos = 0; pos < data.size(); pos += piece)
            hash.addData(QByteArrayView(data).sliced(pos, std::min(piece, data.size() - pos)));
        EXPECT_EQ(hash.result().toHex(), expected.toHex());
        // The digest ends the message; the same object then starts the next one.
        hash.addData("abc");
        EXPECT_EQ(hash.result().toHex(), fb::app::sha256("abc").toHex());
    }
}

} // namespace
