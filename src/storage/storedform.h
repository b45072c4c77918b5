#pragma once

#include <QByteArray>
#include <QJsonObject>

#include <functional>
#include <optional>

namespace fb::app {

// How the model understands a stored JSON object: the stored form it gives back after reading
// it, or nothing when it cannot read it at all.
using StoredFormReading = std::function<std::optional<QJsonObject>(const QJsonObject &stored)>;

// A stored file can hold values the model cannot take in: a title that is a number, a body that
// is an object, a date in a form it does not read, a list member of the wrong shape. The model
// reads a default in their place, and writing that default back would destroy the value.
//
// Given the stored form the model gives now (`current`) and the bytes of the file as it was read,
// this puts back every top-level value of the file that the model's reading did not keep as it
// was, unless the model's value for that key changed since it was read (a change being saved
// sets it). So an untouched value the model could not understand survives any number of saves.
QJsonObject keepWhatWasNotUnderstood(QJsonObject current, const QByteArray &storedBytes,
                                     const StoredFormReading &understand);

} // namespace fb::app
