// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetReader.h"

#include "platform/media/internal/AssetState.h"
#include "platform/media/internal/ReaderState.h"

#include <QLoggingCategory>

namespace Platform {

namespace {
Q_LOGGING_CATEGORY(readerLog, "Ondrilet.AssetReader")
} // namespace

AssetReader::AssetReader(Asset asset)
    : m_asset(std::move(asset))
    , m_state(std::make_shared<Internal::ReaderState>())
{
    m_asset.probe();
}

AssetReader::~AssetReader() = default;

bool AssetReader::canAdd(const AssetReaderOutput& output) const
{
    return m_state->status() == Internal::ReaderState::unknown && !output.m_reader &&
           output.canReadFrom(m_asset);
}

void AssetReader::add(std::shared_ptr<AssetReaderOutput> output)
{
    if (!output || !canAdd(*output)) {
        qCCritical(readerLog) << "An output the reader cannot take was not added";
        return;
    }
    output->m_reader = m_state;
    m_outputs.push_back(std::move(output));
}

bool AssetReader::startReading()
{
    const std::lock_guard lock(m_state->mutex);
    if (m_state->status() != Internal::ReaderState::unknown)
        return false;
    try {
        std::set<int> streams;
        for (const auto& output : m_outputs)
            streams.merge(output->sourceStreams());
        m_state->start(std::make_unique<Internal::ReaderSource>(m_asset.path(), streams),
                       static_cast<int>(m_outputs.size()));
        for (const auto& output : m_outputs)
            output->startReading();
        return true;
    } catch (const MediaError& error) {
        m_state->fail(error);
        return false;
    }
}

void AssetReader::cancelReading()
{
    m_state->cancel();
}

AssetReader::Status AssetReader::status() const
{
    return static_cast<Status>(m_state->status());
}

std::optional<MediaError> AssetReader::error() const
{
    return m_state->error();
}

} // namespace Platform
