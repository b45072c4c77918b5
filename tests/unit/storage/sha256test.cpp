#include "storage/sha256.h"

#include "support/printers.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRandomGenerator>

#include <gtest/gtest.h>

#include <vector>

using namespace Qt::StringLiterals;
using fb::app::portableSha256;
using fb::app::sha256;
using fb::app::sha256Hex;

namespace {

QString referenceHex(QByteArrayView data)
{
    return QString::fromLatin1(QCryptographicHash::hash(data, QCryptographicHash::Sha256).toHex());
}

} // namespace

TEST(Sha256, MatchesTheStandardTestVectorsOnBothPaths)
{
    struct Case
    {
        const char *name;
        QByteArray message;
        QString digest;
    };
    const Case cases[] = {
        {"empty", QByteArray(),
         u"e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"_s},
        {"abc", "abc"_ba, u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s},
        {"448 bits", "abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"_ba,
         u"248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"_s},
        {"896 bits",
         "abcdefghbcdefghicdefghijdefghijkefghijklfghijklmghijklmnhijklmnoijklmnopjklmnopqklmnopqr"
         "lmnopqrsmnopqrstnopqrstu"_ba,
         u"cf5b16a778af8380036ce59e7b0492370b249b11e8f07a51afac45037afee9d1"_s},
        {"a million a", QByteArray(1'000'000, 'a'),
         u"cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"_s},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(sha256Hex(c.message), c.digest);
        EXPECT_EQ(sha256(c.message).size(), 32);
        EXPECT_EQ(QString::fromLatin1(portableSha256(c.message).toHex()), c.digest);
    }
}

// Every length up to a few blocks covers each place the padding and the bit length can fall,
// and the odd offsets keep the message off any alignment. Each message ends exactly where its
// allocation does, so reading one byte past it is an error under the address sanitizer.
TEST(Sha256, AgreesWithTheGenericImplementationForEveryLengthAndAlignment)
{
    QRandomGenerator random(20240914);
    std::vector<qsizetype> lengths;
    for (qsizetype n = 0; n <= 300; ++n)
        lengths.push_back(n);
    lengths.insert(lengths.end(), {1 << 20, 3 * (1 << 20) + 55, 4 * (1 << 20) - 9});

    for (const qsizetype length : lengths) {
        const qsizetype offset = length % 4;
        std::vector<char> buffer(size_t(offset + length));
        for (char &byte : buffer)
            byte = char(random.bounded(256));
        const QByteArrayView message(buffer.data() + offset, length);
        SCOPED_TRACE(length);
        EXPECT_EQ(sha256Hex(message), referenceHex(message));
    }
}

TEST(Sha256, UsesTheShaInstructionsWhenTheProcessorReportsThem)
{
    QFile cpuInfo(u"/proc/cpuinfo"_s);
    if (!cpuInfo.open(QIODevice::ReadOnly | QIODevice::Text))
        GTEST_SKIP() << "the processor's features cannot be read on this system";
    const QByteArray features = cpuInfo.readAll();
#if defined(__x86_64__)
    constexpr bool isX86 = true;
#else
    constexpr bool isX86 = false;
#endif
    const bool reportsSha = features.contains(" sha_ni") && features.contains(" sse4_1")
                            && features.contains(" ssse3");
    EXPECT_EQ(fb::app::sha256UsesCpuInstructions(), isX86 && reportsSha);
}
