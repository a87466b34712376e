// SPDX-License-Identifier: GPL-3.0-or-later
// The one list of presets of the running application, shared by the main window and the preset
// manager. It lives in memory only: nothing is saved or read back, so every launch starts from
// the built-in presets. Main thread only.
#pragma once

#include "app/presets/AnyPreset.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <optional>

namespace Ondrilet {

class PresetStore : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<Ondrilet::AnyPreset> allPresets READ allPresets WRITE setAllPresets NOTIFY
                   allPresetsChanged)

public:
    // Starts with the built-in presets.
    explicit PresetStore(QObject* parent = nullptr);

    // In the order shown. The operations keep every video preset before every audio preset;
    // only a replacement that changes a preset's kind, or a list set from outside, breaks that.
    const QList<AnyPreset>& allPresets() const { return m_allPresets; }
    void setAllPresets(const QList<AnyPreset>& presets);

    // Replaces the whole list, user presets included, by the five built-in video presets and
    // then the five built-in audio presets, all with new identifiers.
    void loadFactoryPresets();
    // An audio preset goes to the end; a video preset goes right behind the last entry that is
    // not audio, or to the front when there is none.
    void addPreset(const AnyPreset& preset);
    // Removes every entry with this identifier. Built-in presets are not protected, and the
    // list may become empty. Held by tst_presetstore::deletingABuiltInPreset.
    void deletePreset(const QUuid& id);
    // Replaces the first entry with the same identifier where it stands; the kind may change.
    // An unknown identifier changes nothing.
    void updatePreset(const AnyPreset& preset);

    // The first entry with this identifier or with exactly this name, if any.
    std::optional<AnyPreset> preset(const QUuid& id) const;
    std::optional<AnyPreset> presetNamed(const QString& name) const;

signals:
    // After every operation that writes the list; not after a delete or an update that matched
    // nothing.
    void allPresetsChanged();

private:
    QList<AnyPreset> m_allPresets;
};

} // namespace Ondrilet
