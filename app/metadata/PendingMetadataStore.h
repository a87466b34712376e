// SPDX-License-Identifier: GPL-3.0-or-later
// Metadata edits waiting for a conversion: one CBOR map per input file name in the user
// defaults, under "pendingMetadata_" + the name. Strings, integers, Booleans and dates keep their
// own types. The key holds the name and not the path, so files of one name share an entry.
// GUI thread only, like the user defaults.
#pragma once

#include <QCborMap>
#include <QString>

#include <optional>

namespace Platform {
class UserDefaults;
}

namespace Ondrilet {

class PendingMetadataStore
{
public:
    static inline const QString keyPrefix = QStringLiteral("pendingMetadata_");

    // The map's keys.
    static inline const QString titleKey = QStringLiteral("title");
    static inline const QString artistKey = QStringLiteral("artist");
    static inline const QString albumKey = QStringLiteral("album");
    static inline const QString genreKey = QStringLiteral("genre");
    static inline const QString yearKey = QStringLiteral("year");
    static inline const QString composerKey = QStringLiteral("composer");
    static inline const QString albumArtistKey = QStringLiteral("albumArtist");
    static inline const QString commentsKey = QStringLiteral("comments");
    static inline const QString creationDateKey = QStringLiteral("creationDate");
    static inline const QString writeToFilenameKey = QStringLiteral("writeToFilename");

    // Without defaults given, each call uses the standard defaults of that moment.
    explicit PendingMetadataStore(Platform::UserDefaults* defaults = nullptr);

    // "pendingMetadata_" + the last path component of `inputPath`, extension included.
    static QString key(const QString& inputPath);

    // Replaces the entry for the file's name; the later write wins.
    void store(const QString& inputPath, const QCborMap& metadata);
    // The entry as a map, or nothing when it is absent or its bytes are not one CBOR map with
    // text keys: undecodable data counts as no entry.
    std::optional<QCborMap> read(const QString& inputPath) const;
    // Whether data is stored under the file's key at all, decodable or not.
    bool hasData(const QString& inputPath) const;
    void remove(const QString& inputPath);

    // The map's bytes as stored, and back; decoding answers nothing for anything but one whole
    // CBOR map whose keys are all text.
    static QByteArray encode(const QCborMap& metadata);
    static std::optional<QCborMap> decode(const QByteArray& bytes);

private:
    Platform::UserDefaults& defaults() const;

    Platform::UserDefaults* m_defaults = nullptr;
};

} // namespace Ondrilet
