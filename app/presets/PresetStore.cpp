// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/presets/PresetStore.h"

namespace Ondrilet {

PresetStore::PresetStore(QObject* parent)
    : QObject(parent)
{
    loadFactoryPresets();
}

void PresetStore::setAllPresets(const QList<AnyPreset>& presets)
{
    m_allPresets = presets;
    emit allPresetsChanged();
}

void PresetStore::loadFactoryPresets()
{
    QList<AnyPreset> presets;
    for (const VideoPreset& preset : factoryVideoPresets())
        presets.append(AnyPreset::video(preset));
    for (const AudioPreset& preset : factoryAudioPresets())
        presets.append(AnyPreset::audio(preset));
    // One assignment, so observers see the old list or the new one and nothing in between.
    setAllPresets(presets);
}

void PresetStore::addPreset(const AnyPreset& preset)
{
    if (preset.isAudio()) {
        m_allPresets.append(preset);
    } else {
        qsizetype insertAt = 0;
        for (qsizetype i = m_allPresets.size() - 1; i >= 0; --i) {
            if (!m_allPresets[i].isAudio()) {
                insertAt = i + 1;
                break;
            }
        }
        m_allPresets.insert(insertAt, preset);
    }
    emit allPresetsChanged();
}

void PresetStore::deletePreset(const QUuid& id)
{
    const qsizetype removed =
        m_allPresets.removeIf([&id](const AnyPreset& preset) { return preset.id() == id; });
    if (removed > 0)
        emit allPresetsChanged();
}

void PresetStore::updatePreset(const AnyPreset& preset)
{
    for (AnyPreset& entry : m_allPresets) {
        if (entry.id() == preset.id()) {
            entry = preset;
            emit allPresetsChanged();
            return;
        }
    }
}

std::optional<AnyPreset> PresetStore::preset(const QUuid& id) const
{
    for (const AnyPreset& entry : m_allPresets)
        if (entry.id() == id)
            return entry;
    return std::nullopt;
}

std::optional<AnyPreset> PresetStore::presetNamed(const QString& name) const
{
    for (const AnyPreset& entry : m_allPresets)
        if (entry.name() == name)
            return entry;
    return std::nullopt;
}

} // namespace Ondrilet
