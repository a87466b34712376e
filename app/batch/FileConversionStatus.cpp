// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batch/FileConversionStatus.h"

namespace Ondrilet {

ConversionEngine::ConversionPhase FileConversionStatus::phase() const
{
    const auto* processing = std::get_if<Processing>(&m_value);
    return processing ? processing->phase : ConversionEngine::ConversionPhase::initializing;
}

QString FileConversionStatus::outputURL() const
{
    const auto* completed = std::get_if<Completed>(&m_value);
    return completed ? completed->outputURL : QString();
}

QString FileConversionStatus::error() const
{
    const auto* failed = std::get_if<Failed>(&m_value);
    return failed ? failed->error : QString();
}

QString FileConversionStatus::reason() const
{
    const auto* skipped = std::get_if<Skipped>(&m_value);
    return skipped ? skipped->reason : QString();
}

QString FileConversionStatus::displayText() const
{
    switch (kind()) {
    case Kind::processing:
        return ConversionEngine::rawValue(phase());
    case Kind::completed:
        return QStringLiteral("Completed");
    case Kind::failed:
        return QStringLiteral("Failed");
    case Kind::skipped:
        return QStringLiteral("Skipped");
    case Kind::pending:
        return QStringLiteral("Pending");
    case Kind::paused:
        return QStringLiteral("Paused");
    }
    return {};
}

QString FileConversionStatus::symbolName() const
{
    switch (kind()) {
    case Kind::processing:
        return QStringLiteral("gearshape.2");
    case Kind::completed:
        return QStringLiteral("checkmark.circle.fill");
    case Kind::failed:
        return QStringLiteral("xmark.circle.fill");
    case Kind::skipped:
        return QStringLiteral("minus.circle.fill");
    case Kind::pending:
        return QStringLiteral("clock");
    case Kind::paused:
        return QStringLiteral("pause.circle.fill");
    }
    return {};
}

FileConversionStatus::Color FileConversionStatus::color() const
{
    switch (kind()) {
    case Kind::processing:
        return Color::blue;
    case Kind::completed:
        return Color::green;
    case Kind::failed:
        return Color::red;
    case Kind::skipped:
        return Color::orange;
    case Kind::pending:
        return Color::secondary;
    case Kind::paused:
        return Color::yellow;
    }
    return Color::secondary;
}

} // namespace Ondrilet
