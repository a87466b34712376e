// SPDX-License-Identifier: GPL-3.0-or-later
// libFuzzer entry: the output-name builder on any input path, with the output format, the
// settings, the options and the level target chosen by the first bytes. Single-threaded; the
// preferences it consults live in a scratch file of this process.
#include "app/naming/OutputNaming.h"
#include "platform/foundation/UserDefaults.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>

#include <cstddef>
#include <cstdint>

using namespace Ondrilet;

namespace {

template <typename Array>
auto pick(const Array& cases, std::uint8_t byte)
{
    return cases[byte % cases.size()];
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Platform::UserDefaults::setStandardFilePath(
        QDir::tempPath() + QStringLiteral("/ondrilet-fuzz-naming-") +
        QString::number(QCoreApplication::applicationPid()) + QStringLiteral(".conf"));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 6)
        return 0;
    const OutputFormat format = pick(allOutputFormats(), data[0]);
    AudioSettings audio;
    audio.codec = pick(allAudioCodecs(), data[1]);
    audio.sampleRate = pick(allSampleRates(), data[1] >> 4);
    if (data[2] & 1)
        audio.bitDepth = pick(allBitDepths(), data[2] >> 1);
    if (data[2] & 2)
        audio.bitrate = pick(allAudioBitrates(), data[2] >> 2);
    const VideoSettings video;
    FileOptions options;
    options.includeSettingsInFilename = data[3] & 1;
    options.overwriteExisting = data[3] & 2;
    options.createSubfolders = data[3] & 4;
    // Finite levels only: a level that is not a number is a programming error that ends the
    // process by design.
    const float level = -static_cast<float>(data[4]) / 4.0f;
    const ConversionEngine::AudioLevelTarget target =
        data[5] % 3 == 0   ? ConversionEngine::AudioLevelTarget::none()
        : data[5] % 3 == 1 ? ConversionEngine::AudioLevelTarget::dbFS(level)
                           : ConversionEngine::AudioLevelTarget::integratedLUFS(level);
    const QString input = QString::fromUtf8(reinterpret_cast<const char*>(data + 6),
                                            static_cast<qsizetype>(size - 6));
    const QString base = QStringLiteral("/tmp/out");
    const QString output =
        OutputNaming::outputURL(input, format, video, audio, options, base, std::nullopt,
                                ConversionEngine::InterlacingHandlingMode::keepOriginal, target);
    // Whatever the input's name, the output stays in its folder and keeps the format's extension.
    const QString folder =
        options.createSubfolders ? base + u'/' + OutputNaming::subfolder(format) : base;
    const QString name = output.mid(folder.size() + 1);
    if (!output.startsWith(folder + u'/') || name.contains(u'/') ||
        !name.endsWith(u'.' + fileExtension(format)))
        __builtin_trap();
    (void)OutputNaming::stem(input);
    (void)OutputNaming::filenameDate(input);
    return 0;
}
