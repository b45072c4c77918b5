#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

namespace fb::app {

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
