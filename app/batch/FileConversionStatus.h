// SPDX-License-Identifier: GPL-3.0-or-later
// Where one file of a batch stands: processing (in a phase), completed (with its output),
// failed (with the error), skipped (with a reason), pending or paused, and how the batch window
// shows each. A plain value; any thread.
#pragma once

#include "ConversionEngine/progress/ConversionPhase.h"

#include <QMetaType>
#include <QString>

#include <variant>

namespace Ondrilet {

class FileConversionStatus
{
public:
    enum class Kind
    {
        processing,
        completed,
        failed,
        skipped,
        pending,
        paused,
    };

    // The colour of a status, named; the views choose the shade.
    enum class Color
    {
        blue,
        green,
        red,
        orange,
        secondary,
        yellow,
    };

    FileConversionStatus() = default; // pending

    static FileConversionStatus processing(ConversionEngine::ConversionPhase phase)
    {
        return FileConversionStatus(Processing{phase});
    }
    static FileConversionStatus completed(const QString& outputURL)
    {
        return FileConversionStatus(Completed{outputURL});
    }
    static FileConversionStatus failed(const QString& error)
    {
        return FileConversionStatus(Failed{error});
    }
    static FileConversionStatus skipped(const QString& reason)
    {
        return FileConversionStatus(Skipped{reason});
    }
    static FileConversionStatus pending() { return FileConversionStatus(Pending{}); }
    static FileConversionStatus paused() { return FileConversionStatus(Paused{}); }

    Kind kind() const { return static_cast<Kind>(m_value.index()); }
    bool isProcessing() const { return kind() == Kind::processing; }

    // The payloads; each is empty (or initializing) for the other cases.
    ConversionEngine::ConversionPhase phase() const;
    QString outputURL() const;
    QString error() const;
    QString reason() const;

    QString displayText() const;
    // The symbol's name in the symbol set the windows map onto theme icons.
    QString symbolName() const;
    Color color() const;

    friend bool operator==(const FileConversionStatus&, const FileConversionStatus&) = default;

private:
    struct Processing
    {
        ConversionEngine::ConversionPhase phase;
        friend bool operator==(const Processing&, const Processing&) = default;
    };
    struct Completed
    {
        QString outputURL;
        friend bool operator==(const Completed&, const Completed&) = default;
    };
    struct Failed
    {
        QString error;
        friend bool operator==(const Failed&, const Failed&) = default;
    };
    struct Skipped
    {
        QString reason;
        friend bool operator==(const Skipped&, const Skipped&) = default;
    };
    struct Pending
    {
        friend bool operator==(const Pending&, const Pending&) = default;
    };
    struct Paused
    {
        friend bool operator==(const Paused&, const Paused&) = default;
    };

    // The alternatives stand in the order of Kind.
    using Value = std::variant<Processing, Completed, Failed, Skipped, Pending, Paused>;

    explicit FileConversionStatus(Value value)
        : m_value(std::move(value))
    {}

    Value m_value = Pending{};
};

} // namespace Ondrilet

Q_DECLARE_METATYPE(Ondrilet::FileConversionStatus)
