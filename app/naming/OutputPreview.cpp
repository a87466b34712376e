// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/naming/OutputPreview.h"

#include "app/naming/OutputNaming.h"
#include "app/window/ConversionControls.h"

namespace Ondrilet {

QString OutputPreview::text(const Inputs& inputs)
{
    const OutputFormat& format = inputs.outputFormat;
    QString preview;
    if (inputs.createSubfolders) {
        // Upper case for both kinds here, unlike the real subfolders of audio outputs.
        preview += format.isVideo() ? QStringLiteral("Video/") + rawValue(format.videoFormat)
                                    : QStringLiteral("Audio/") + fileExtension(format).toUpper();
        preview += u'/';
    }
    preview += inputs.firstFile ? OutputNaming::stem(*inputs.firstFile) : QStringLiteral("example");
    if (inputs.includeSettingsInFilename)
        preview += QStringLiteral(" (") + tags(inputs).join(u'_') + u')';
    preview += u'.' + fileExtension(format);
    preview += QStringLiteral("\n📅 Creation Date: ") + inputs.creationDateText;
    return preview;
}

QStringList OutputPreview::tags(const Inputs& inputs)
{
    QStringList tags;
    if (inputs.outputFormat.isVideo()) {
        tags.append(rawValue(inputs.videoCodec));
        if (inputs.resolution)
            tags.append(rawValue(*inputs.resolution));
        if (inputs.frameRate != ConversionEngine::VideoFrameRate::source)
            tags.append(ConversionEngine::rawValue(inputs.frameRate) + QStringLiteral("fps"));
        tags.append(ConversionControls::qualityTag(inputs.qualityMode));
    }
    tags += audioTags(inputs);
    if (const std::optional<QString> level = OutputNaming::levelToken(inputs.levelProcessing))
        tags.append(*level);
    return tags;
}

QStringList OutputPreview::audioTags(const Inputs& inputs)
{
    QStringList tags{rawValue(inputs.audioCodec)};
    if (inputs.audioCodec != AudioCodec::pcm && inputs.audioCodec != AudioCodec::alac)
        tags.append(QStringLiteral("%1k").arg(rawValue(inputs.audioBitrate)));
    tags.append(rawValue(inputs.sampleRate).remove(u' '));
    if (inputs.audioCodec == AudioCodec::pcm)
        tags.append(QStringLiteral("%1bit").arg(rawValue(inputs.bitDepth)));
    return tags;
}

} // namespace Ondrilet
