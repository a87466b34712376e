// SPDX-License-Identifier: GPL-3.0-or-later
// The sections of the built-in manual, in the order the sidebar lists them, with their labels,
// and the one object per section that the "helpSectionChange" notification carries. Any thread.
#pragma once

#include <QString>

#include <array>

namespace Ondrilet {

enum class HelpSection
{
    gettingStarted,
    audioConversion,
    videoConversion,
    presets,
    audioLevelProcessing,
    metadataEditor,
    settings,
    troubleshooting,
    technicalDetails,
};

// "Getting Started" … "Technical Details".
QString label(HelpSection section);

inline const std::array<HelpSection, 9>& allHelpSections()
{
    static constexpr std::array<HelpSection, 9> cases{
        HelpSection::gettingStarted,
        HelpSection::audioConversion,
        HelpSection::videoConversion,
        HelpSection::presets,
        HelpSection::audioLevelProcessing,
        HelpSection::metadataEditor,
        HelpSection::settings,
        HelpSection::troubleshooting,
        HelpSection::technicalDetails,
    };
    return cases;
}

// A notification's object is an address: each section has one that lives as long as the program.
const void* notificationObject(HelpSection section);
// The section whose address `object` is, or gettingStarted for any other address.
HelpSection helpSectionFromNotificationObject(const void* object);

} // namespace Ondrilet
