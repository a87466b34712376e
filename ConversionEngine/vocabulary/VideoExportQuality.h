// SPDX-License-Identifier: GPL-3.0-or-later
// The quality names of a whole-file export, each standing for an export preset of the media
// layer. `high` stands for a fixed 1920×1080 preset on purpose (held by
// tst_enginevocabulary::videoExportQualityTable). Plain value; any thread.
#pragma once

#include "ConversionEngine/vocabulary/EnumTable.h"
#include "platform/media/ExportPreset.h"

#include <QString>

#include <array>
#include <optional>

namespace ConversionEngine {

enum class VideoExportQuality
{
    highest,
    high,
    medium,
    low,
};

QString rawValue(VideoExportQuality quality);
std::optional<VideoExportQuality> videoExportQualityFromRawValue(const QString& raw);
Platform::ExportPreset exportPreset(VideoExportQuality quality);

// Every case in declared order, with its raw value.
inline constexpr auto videoExportQualityTable = enumTable<VideoExportQuality, QStringView>({
    {VideoExportQuality::highest, u"Highest"},
    {VideoExportQuality::high, u"High"},
    {VideoExportQuality::medium, u"Medium"},
    {VideoExportQuality::low, u"Low"},
});
static_assert(videoExportQualityTable.hasDistinctCases());

inline const auto& allVideoExportQualities()
{
    return videoExportQualityTable.allCases();
}

} // namespace ConversionEngine
