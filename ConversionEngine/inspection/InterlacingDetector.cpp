// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/inspection/InterlacingDetector.h"

#include "platform/foundation/Console.h"
#include "platform/media/Size.h"

#include <QFileInfo>
#include <QMetaType>

namespace ConversionEngine {

namespace {

QString word(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

bool holdsInteger(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return true;
    default:
        return false;
    }
}

std::optional<std::int64_t> integerKey(const Platform::SettingsDictionary& extensions,
                                       const QString& key)
{
    const QVariant value = extensions.value(key);
    if (!holdsInteger(value))
        return std::nullopt;
    return std::int64_t(value.toLongLong());
}

} // namespace

FieldKeys InterlacingDetector::fieldKeys(const Platform::SettingsDictionary& extensions)
{
    FieldKeys keys;
    const QVariant flag = extensions.value(QStringLiteral("IsInterlaced"));
    if (flag.typeId() == QMetaType::Bool)
        keys.isInterlaced = flag.toBool();
    keys.cvFieldCount = integerKey(extensions, QStringLiteral("CVFieldCount"));
    keys.fieldCount = integerKey(extensions, QStringLiteral("FieldCount"));
    keys.fieldDetail = integerKey(extensions, QStringLiteral("FieldDetail"));
    return keys;
}

QCoro::Task<InterlacingVerdict>
InterlacingDetector::detectInterlacing(Platform::AssetTrack track,
                                       Platform::FormatDescription description)
{
    if (const auto verdict = interlacingFromKeys(fieldKeys(description.extensions))) {
        printKeyVerdict(*verdict);
        co_return *verdict;
    }
    const InterlacingVerdict verdict = co_await runHeuristic(track);
    Platform::Console::print(QStringLiteral("🎯 Heuristic interlacing detection result: ") +
                             word(verdict.isInterlaced));
    co_return verdict;
}

QCoro::Task<FieldDominanceVerdict>
InterlacingDetector::detectFieldDominance(Platform::AssetTrack track,
                                          Platform::FormatDescription description)
{
    if (const auto verdict = fieldDominanceFromKeys(fieldKeys(description.extensions)))
        co_return *verdict;
    const InterlacingVerdict interlacing = co_await detectInterlacing(track, description);
    co_return fieldDominanceFromInterlacing(interlacing.isInterlaced);
}

FieldDominance InterlacingDetector::fieldDominance(FieldDominanceKind kind)
{
    switch (kind) {
    case FieldDominanceKind::progressive:
        return FieldDominance::progressive;
    case FieldDominanceKind::topFieldFirst:
        return FieldDominance::topFieldFirst;
    case FieldDominanceKind::bottomFieldFirst:
        return FieldDominance::bottomFieldFirst;
    }
    return FieldDominance::progressive;
}

FieldDominanceKind InterlacingDetector::fieldDominanceKind(FieldDominance dominance)
{
    switch (dominance) {
    case FieldDominance::progressive:
        return FieldDominanceKind::progressive;
    case FieldDominance::topFieldFirst:
        return FieldDominanceKind::topFieldFirst;
    case FieldDominance::bottomFieldFirst:
        return FieldDominanceKind::bottomFieldFirst;
    }
    return FieldDominanceKind::progressive;
}

QCoro::Task<InterlacingVerdict> InterlacingDetector::runHeuristic(Platform::AssetTrack track)
{
    // Rate before size, and both before the name is looked at: a failed load ends detection
    // whatever the name says.
    const float framesPerSecond = co_await track.loadNominalFrameRate();
    const Platform::Size size = co_await track.loadNaturalSize();
    const QString lowerCasedName = QFileInfo(track.assetPath()).fileName().toLower();
    const InterlacingVerdict verdict = interlacingHeuristic(
        lowerCasedName.toStdString(), framesPerSecond, size.width, size.height);
    printHeuristicVerdict(verdict, lowerCasedName);
    co_return verdict;
}

void InterlacingDetector::printKeyVerdict(const InterlacingVerdict& verdict)
{
    const QString outcome =
        verdict.isInterlaced ? QStringLiteral("interlaced") : QStringLiteral("progressive");
    switch (verdict.step) {
    case InterlacingStep::isInterlacedKey:
        Platform::Console::print(QStringLiteral("✅ Found explicit interlaced flag: ") +
                                 word(verdict.isInterlaced));
        return;
    case InterlacingStep::cvFieldCountKey:
        Platform::Console::print(
            QStringLiteral("✅ CVFieldCount: %1 → %2").arg(verdict.keyValue).arg(outcome));
        return;
    case InterlacingStep::fieldCountKey:
        Platform::Console::print(
            QStringLiteral("✅ FieldCount: %1 → %2").arg(verdict.keyValue).arg(outcome));
        return;
    default:
        return;
    }
}

void InterlacingDetector::printHeuristicVerdict(const InterlacingVerdict& verdict,
                                                const QString& lowerCasedName)
{
    switch (verdict.step) {
    case InterlacingStep::fileName:
        Platform::Console::print(QStringLiteral("🎯 Filename explicitly indicates interlaced: ") +
                                 lowerCasedName);
        return;
    case InterlacingStep::standardDefinition:
        Platform::Console::print(
            QStringLiteral("🎯 Detected SD interlaced content (legacy heuristic)"));
        return;
    case InterlacingStep::digitalVideo:
        Platform::Console::print(QStringLiteral("🎯 Detected DV interlaced content"));
        return;
    default:
        return;
    }
}

} // namespace ConversionEngine
