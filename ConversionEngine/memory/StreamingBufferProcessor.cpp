// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/memory/StreamingBufferProcessor.h"

namespace ConversionEngine {

Q_LOGGING_CATEGORY(streamingProcessorLog, "Ondrilet.StreamingProcessor")

StreamingBufferProcessor::StreamingBufferProcessor(MemoryManager* memoryManager, int bufferSize,
                                                   QObject* parent)
    : QObject(parent)
    , m_memoryManager(memoryManager)
    , m_bufferSize(bufferSize)
{}

bool StreamingBufferProcessor::memoryIsHigh() const
{
    // The same test as the manager's throttle decision, made on its two fields.
    return m_memoryManager->isMemoryPressureHigh() ||
           m_memoryManager->memoryUsage() > MemoryManager::memoryPressureThreshold;
}

} // namespace ConversionEngine
