// SPDX-License-Identifier: GPL-3.0-or-later
// A preset of either kind, as the store lists it and the pickers show it: a video preset or an
// audio preset. It is identified by the identifier of the record inside. Plain value: any thread.
#pragma once

#include "app/presets/AudioPreset.h"
#include "app/presets/VideoPreset.h"

#include <QMetaType>
#include <QString>
#include <QUuid>

#include <variant>

namespace Ondrilet {

class AnyPreset
{
public:
    enum class Kind
    {
        video,
        audio,
    };

    // A video preset with the record's defaults and a fresh identifier; lists and property
    // values need a default.
    AnyPreset() = default;
    AnyPreset(VideoPreset preset);
    AnyPreset(AudioPreset preset);

    static AnyPreset video(VideoPreset preset) { return AnyPreset(std::move(preset)); }
    static AnyPreset audio(AudioPreset preset) { return AnyPreset(std::move(preset)); }

    Kind kind() const;
    bool isVideo() const { return kind() == Kind::video; }
    bool isAudio() const { return kind() == Kind::audio; }

    // The record inside, or null when the preset is of the other kind.
    const VideoPreset* videoPreset() const { return std::get_if<VideoPreset>(&m_record); }
    const AudioPreset* audioPreset() const { return std::get_if<AudioPreset>(&m_record); }

    QUuid id() const;
    QString name() const;
    QString presetDescription() const;

    // The kind first, then every field of the record inside.
    friend bool operator==(const AnyPreset&, const AnyPreset&) = default;

private:
    std::variant<VideoPreset, AudioPreset> m_record;
};

// The kind first, then the record inside; consistent with equality.
size_t qHash(const AnyPreset& preset, size_t seed = 0);

} // namespace Ondrilet

Q_DECLARE_METATYPE(Ondrilet::AnyPreset)
