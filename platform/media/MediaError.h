// SPDX-License-Identifier: GPL-3.0-or-later
// An error of the media layer: a domain, a numeric code and a text a person can read.
// Codes of the media domain keep the numbers the engines tell apart (format not recognised,
// decoder or encoder missing, output exists, broken source data, disk full). Any thread.
#pragma once

#include <QString>

#include <exception>
#include <string>

namespace Platform {

class MediaError : public std::exception
{
public:
    // The domain of every error raised by the media layer itself.
    static inline const QString mediaDomain = QStringLiteral("Ondrilet.Media");

    enum Code : int
    {
        unknown = -11800,
        diskFull = -11807,
        invalidSourceMedia = -11822,
        fileAlreadyExists = -11823,
        fileFormatNotRecognized = -11828,
        decoderNotFound = -11833,
        encoderNotFound = -11834,
    };

    MediaError(QString domain, int code, QString localizedDescription);

    // An error of the media domain.
    static MediaError media(int code, QString localizedDescription);

    const QString& domain() const { return m_domain; }
    int code() const { return m_code; }
    const QString& localizedDescription() const { return m_description; }
    bool isMediaDomain() const { return m_domain == mediaDomain; }

    const char* what() const noexcept override { return m_what.c_str(); }

private:
    QString m_domain;
    int m_code;
    QString m_description;
    std::string m_what;
};

} // namespace Platform
