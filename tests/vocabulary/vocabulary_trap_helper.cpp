// SPDX-License-Identifier: GPL-3.0-or-later
// Runs one fatal trap of the settings vocabulary, named by its first argument, so that a test
// can watch the process die with the trap's text. Exits with 2 if the trap does not fire.
#include "ConversionEngine/vocabulary/AudioLevelPreset.h"
#include "app/driver/SettingsMapping.h"

#include <QString>

#include <cstdio>
#include <limits>
#include <sys/resource.h>

namespace {

void runTrap(const QString& name)
{
    using ConversionEngine::AudioLevelPreset;
    if (name == QLatin1String("caf")) {
        Ondrilet::mapAudioFormat(Ondrilet::AudioFormat::caf);
    } else if (name == QLatin1String("bitrate")) {
        // A bit rate no picker offers: 100 kbps has no engine counterpart.
        Ondrilet::AudioSettings settings;
        settings.bitrate = static_cast<Ondrilet::AudioBitrate>(100);
        Ondrilet::mapAudioSettings(settings, ConversionEngine::AudioLevelTarget::none());
    } else if (name == QLatin1String("videoFormat")) {
        Ondrilet::mapVideoSettings(Ondrilet::VideoSettings{},
                                   static_cast<Ondrilet::VideoFormat>(7));
    } else if (name == QLatin1String("customNaN")) {
        displayName(AudioLevelPreset::custom(std::numeric_limits<float>::quiet_NaN()));
    } else if (name == QLatin1String("customInfinity")) {
        displayName(AudioLevelPreset::custom(-std::numeric_limits<float>::infinity()));
    } else if (name == QLatin1String("customTooLarge")) {
        displayName(AudioLevelPreset::custom(9223372036854775808.0f));
    }
}

} // namespace

int main(int argc, char** argv)
{
    // The traps abort on purpose; no core file should be left behind.
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    if (argc < 2)
        return 2;
    runTrap(QString::fromLocal8Bit(argv[1]));
    std::fputs("trap did not fire\n", stderr);
    return 2;
}
