// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/help/HelpSection.h"

namespace Ondrilet {

QString label(HelpSection section)
{
    switch (section) {
    case HelpSection::gettingStarted:
        return QStringLiteral("Getting Started");
    case HelpSection::audioConversion:
        return QStringLiteral("Audio Conversion");
    case HelpSection::videoConversion:
        return QStringLiteral("Video Conversion");
    case HelpSection::presets:
        return QStringLiteral("Presets");
    case HelpSection::audioLevelProcessing:
        return QStringLiteral("Audio Level Processing");
    case HelpSection::metadataEditor:
        return QStringLiteral("Metadata Editor");
    case HelpSection::settings:
        return QStringLiteral("Settings");
    case HelpSection::troubleshooting:
        return QStringLiteral("Troubleshooting");
    case HelpSection::technicalDetails:
        return QStringLiteral("Technical Details");
    }
    return {};
}

const void* notificationObject(HelpSection section)
{
    return &allHelpSections()[std::size_t(section)];
}

HelpSection helpSectionFromNotificationObject(const void* object)
{
    for (const HelpSection& section : allHelpSections())
        if (&section == object)
            return section;
    return HelpSection::gettingStarted;
}

} // namespace Ondrilet
