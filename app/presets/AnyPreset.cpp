// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/AnyPreset.h"

#include <QHashFunctions>

namespace Ondrilet {

AnyPreset::AnyPreset(VideoPreset preset)
    : m_record(std::move(preset))
{}

AnyPreset::AnyPreset(AudioPreset preset)
    : m_record(std::move(preset))
{}

AnyPreset::Kind AnyPreset::kind() const
{
    return std::holds_alternative<VideoPreset>(m_record) ? Kind::video : Kind::audio;
}

QUuid AnyPreset::id() const
{
    return std::visit([](const auto& record) { return record.id; }, m_record);
}

QString AnyPreset::name() const
{
    return std::visit([](const auto& record) { return record.name; }, m_record);
}

QString AnyPreset::presetDescription() const
{
    return std::visit([](const auto& record) { return record.presetDescription(); }, m_record);
}

size_t qHash(const AnyPreset& preset, size_t seed)
{
    const size_t withKind = ::qHash(static_cast<int>(preset.kind()), seed);
    if (const VideoPreset* video = preset.videoPreset())
        return qHash(*video, withKind);
    return qHash(*preset.audioPreset(), withKind);
}

} // namespace Ondrilet
