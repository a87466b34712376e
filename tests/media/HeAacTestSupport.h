// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the high-efficiency AAC tests: writes a source file through the media layer the
// way the audio engine's pump does, and measures band powers of decoded audio. Test threads.
#pragma once

#include "platform/foundation/SerialQueue.h"
#include "platform/media/Asset.h"
#include "platform/media/AssetReader.h"
#include "platform/media/AssetReaderTrackOutput.h"
#include "platform/media/AssetWriter.h"
#include "platform/media/AssetWriterInput.h"
#include "platform/media/SettingsDictionary.h"
#include "tests/support/Fixtures.h"

#include <QSemaphore>

#include <cmath>
#include <complex>
#include <numbers>
#include <optional>
#include <vector>

namespace HeAacTest {

inline Platform::SettingsDictionary floatDecoding()
{
    using namespace Platform;
    return SettingsDictionary{
        {SettingsKey::formatId, QVariant::fromValue(AudioFormatId::linearPCM)},
        {SettingsKey::linearPCMBitDepth, 32},
        {SettingsKey::linearPCMIsBigEndian, false},
        {SettingsKey::linearPCMIsFloat, true},
        {SettingsKey::linearPCMIsNonInterleaved, false},
    };
}

inline Platform::SettingsDictionary highEfficiency(std::uint32_t formatId, int rate, int channels,
                                                   int bitRate = 0)
{
    using namespace Platform;
    SettingsDictionary settings{
        {SettingsKey::formatId, QVariant::fromValue(formatId)},
        {SettingsKey::sampleRate, QVariant::fromValue(float(rate))},
        {SettingsKey::numberOfChannels, channels},
    };
    if (bitRate > 0)
        settings.set(SettingsKey::encoderBitRate, bitRate);
    return settings;
}

// Writes the source's first audio track to `target` with `settings`; the writer's error when
// it fails.
inline std::optional<QString> write(const QString& source, const QString& target,
                                    Platform::FileType type,
                                    const Platform::SettingsDictionary& settings)
{
    using namespace Platform;
    const Asset asset(source);
    const AssetTrack track = asset.tracks(MediaType::audio).at(0);
    AssetReader reader(asset);
    auto output = std::make_shared<AssetReaderTrackOutput>(track, floatDecoding());
    reader.add(output);
    AssetWriter writer(target, type);
    AssetWriterInput input(MediaType::audio, settings, track.formatDescriptions().at(0));
    if (!writer.canAdd(input))
        return QStringLiteral("cannot add the input");
    writer.add(input);
    if (!reader.startReading() || !writer.startWriting())
        return writer.error() ? writer.error()->localizedDescription()
                              : QStringLiteral("cannot start");
    writer.startSession(MediaTime::zero());
    QSemaphore done;
    SerialQueue queue(QStringLiteral("mediaInputQueue"));
    input.requestMediaDataWhenReady(queue, [&] {
        while (input.isReadyForMoreMediaData()) {
            const std::shared_ptr<SampleBuffer> buffer = output->copyNextSampleBuffer();
            if (!buffer) {
                input.markAsFinished();
                writer.finishWriting([&] { done.release(); });
                return;
            }
            if (!input.append(buffer)) {
                writer.cancelWriting();
                done.release();
                return;
            }
        }
    });
    if (!done.tryAcquire(1, 120000))
        return QStringLiteral("timed out");
    if (writer.status() != AssetWriter::Status::completed)
        return writer.error() ? writer.error()->localizedDescription()
                              : QStringLiteral("not completed");
    return std::nullopt;
}

inline void fft(std::vector<std::complex<double>>& values)
{
    const std::size_t n = values.size();
    for (std::size_t i = 1, j = 0; i < n; ++i) {
        std::size_t bit = n >> 1;
        for (; j & bit; bit >>= 1)
            j ^= bit;
        j ^= bit;
        if (i < j)
            std::swap(values[i], values[j]);
    }
    for (std::size_t length = 2; length <= n; length <<= 1) {
        const std::complex<double> step = std::polar(1.0, -2.0 * std::numbers::pi / double(length));
        for (std::size_t start = 0; start < n; start += length) {
            std::complex<double> w = 1.0;
            for (std::size_t k = 0; k < length / 2; ++k) {
                const std::complex<double> a = values[start + k];
                const std::complex<double> b = values[start + k + length / 2] * w;
                values[start + k] = a + b;
                values[start + k + length / 2] = a - b;
                w *= step;
            }
        }
    }
}

// Mean power spectrum (2048-point Hann frames, half overlapping) of one channel of decoded
// audio, between `firstFrame` and `endFrame`.
inline std::vector<double> spectrum(const TestSupport::DecodedAudio& audio, int channel,
                                    qint64 firstFrame, qint64 endFrame)
{
    constexpr std::size_t size = 2048;
    std::vector<double> power(size / 2, 0.0);
    int frames = 0;
    for (qint64 start = firstFrame; start + qint64(size) <= endFrame; start += size / 2) {
        std::vector<std::complex<double>> values(size);
        for (std::size_t i = 0; i < size; ++i) {
            const double window = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * double(i) / size);
            values[i] = window *
                        audio.samples[std::size_t(start + qint64(i)) * std::size_t(audio.channels) +
                                      std::size_t(channel)];
        }
        fft(values);
        for (std::size_t k = 0; k < size / 2; ++k)
            power[k] += std::norm(values[k]);
        ++frames;
    }
    for (double& value : power)
        value /= std::max(1, frames);
    return power;
}

// Power (dB) of `spectrumValues` between `lowHertz` and `highHertz`.
inline double bandLevel(const std::vector<double>& spectrumValues, int rate, double lowHertz,
                        double highHertz)
{
    const double binHertz = rate / 2.0 / double(spectrumValues.size());
    double sum = 1e-20;
    for (std::size_t k = 0; k < spectrumValues.size(); ++k) {
        const double centre = double(k) * binHertz;
        if (centre >= lowHertz && centre < highHertz)
            sum += spectrumValues[k];
    }
    return 10.0 * std::log10(sum);
}

} // namespace HeAacTest
