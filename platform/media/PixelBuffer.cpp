// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/PixelBuffer.h"

#include "platform/media/SettingsDictionary.h"
#include "platform/media/internal/PixelBufferState.h"

namespace Platform {

namespace {

constexpr int maximumSide = 16384;

} // namespace

std::shared_ptr<PixelBuffer> PixelBuffer::create(int width, int height)
{
    if (width < 1 || height < 1 || width > maximumSide || height > maximumSide)
        return nullptr;
    Internal::FramePtr frame =
        Internal::PixelBufferState::makeBlackFrame(width, height, AV_PIX_FMT_BGRA);
    if (!frame)
        return nullptr;
    return std::make_shared<PixelBuffer>(
        std::make_unique<Internal::PixelBufferState>(std::move(frame)));
}

PixelBuffer::PixelBuffer(std::unique_ptr<Internal::PixelBufferState> state)
    : m_state(std::move(state))
{}

PixelBuffer::~PixelBuffer() = default;

int PixelBuffer::width() const
{
    return m_state->frame().width;
}

int PixelBuffer::height() const
{
    return m_state->frame().height;
}

std::uint32_t PixelBuffer::pixelFormatType() const
{
    return PixelFormatType::bgra32;
}

bool PixelBuffer::lockBaseAddress()
{
    return m_state->lock();
}

void PixelBuffer::unlockBaseAddress()
{
    m_state->unlock();
}

std::uint8_t* PixelBuffer::baseAddress()
{
    return m_state->bgraData();
}

std::size_t PixelBuffer::bytesPerRow() const
{
    return static_cast<std::size_t>(m_state->bgraLinesize());
}

} // namespace Platform
