// SPDX-License-Identifier: GPL-3.0-or-later
// The self-describing binary form in which the program keeps a dictionary in its preferences:
// one CBOR map with text keys, whose strings, integers, Booleans and dates keep their own types.
// Pure functions; any thread.
#pragma once

#include <QByteArray>
#include <QCborMap>

#include <optional>

namespace Platform {

class PropertyList
{
public:
    static QByteArray data(const QCborMap& dictionary);
    // The dictionary, or nothing for anything but one whole CBOR map whose keys are all text
    // (bytes after the map included).
    static std::optional<QCborMap> dictionary(const QByteArray& data);
};

} // namespace Platform
