#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <array>
#include <memory>

class QCryptographicHash;

namespace fb::app {

// The SHA-256 digest of data that arrives in pieces, such as an archive as it is written: the
// same digest sha256() gives for the pieces joined, on the processor's SHA instructions when
// it has them.
class Sha256
{
public:
    Sha256();
    ~Sha256();

    Sha256(const Sha256 &) = delete;
    Sha256 &operator=(const Sha256 &) = delete;

    void addData(QByteArrayView data);

    // The digest (32 bytes) of everything added. Adding more afterwards starts a new message.
    QByteArray result();

private:
    void reset();

    std::array<quint32, 8> m_state{};
    // The start of a block that still lacks bytes.
    std::array<char, 64> m_block{};
    qsizetype m_blockFill = 0;
    quint64 m_length = 0;
    // The generic implementation, on machines without the instructions.
    std::unique_ptr<QCryptographicHash> m_portable;
};

// The SHA-256 digest (32 bytes) of a whole buffer. On x86-64 processors with the SHA
// extensions it runs on those instructions, several times faster than the generic code that
// every other machine falls back to; both give the same digest.
QByteArray sha256(QByteArrayView data);

// The same digest as 64 lower-case hexadecimal digits.
QString sha256Hex(QByteArrayView data);

// Whether sha256() runs on the processor's SHA instructions on this machine.
bool sha256UsesCpuInstructions();

// The generic implementation sha256() falls back to, reachable on its own so the two can be
// held to the same results on a machine that has the instructions.
QByteArray portableSha256(QByteArrayView data);

} // namespace fb::app
