// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/video/VideoAudioPump.h"

#include "platform/foundation/Console.h"

#include <QString>

namespace ConversionEngine {

VideoAudioPump::VideoAudioPump(Parameters parameters)
    : m_parameters(std::move(parameters))
{}

void VideoAudioPump::operator()()
{
    Endpoints& endpoints = *m_parameters.endpoints;
    std::int64_t& count = *m_parameters.sampleCount;
    if (const std::shared_ptr<Platform::SampleBuffer> sample = endpoints.copyNextSampleBuffer()) {
        ++count;
        if (!endpoints.append(sample)) {
            // No route back to the conversion: the input ends, and the finish never comes.
            Platform::Console::print(
                QStringLiteral("❌ Failed to append audio sample #%1").arg(count));
            endpoints.markAsFinished();
        }
        return;
    }
    // A failed reader ends the same way: the sound is cut short and the file completes.
    endpoints.markAsFinished();
    Platform::Console::print(
        QStringLiteral("✅ Audio processing complete - %1 samples processed").arg(count));
    if (m_parameters.finished)
        m_parameters.finished();
}

} // namespace ConversionEngine
