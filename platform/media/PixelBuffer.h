// SPDX-License-Identifier: GPL-3.0-or-later
// One picture. A picture from a reader stays in its decoder's own form until someone asks for
// its pixels: lockBaseAddress() makes the BGRA bytes once; a writer converts it straight to its
// encoder's size and form without them. Passed as std::shared_ptr; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Platform {

namespace Internal {
class PixelBufferState;
}

class PixelBuffer
{
public:
    // A new black BGRA picture of `width` × `height` (each 1 … 16384) for code that draws its
    // own pixels. Null when the size is out of range.
    static std::shared_ptr<PixelBuffer> create(int width, int height);

    explicit PixelBuffer(std::unique_ptr<Internal::PixelBufferState> state);
    ~PixelBuffer();
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;

    int width() const;
    int height() const;
    // What the pixels read as through baseAddress(): always PixelFormatType::bgra32.
    std::uint32_t pixelFormatType() const;

    // Makes the BGRA bytes (at the first lock only) and holds them until unlock. False when the
    // conversion failed. Writing through baseAddress() changes the picture.
    bool lockBaseAddress();
    void unlockBaseAddress();
    // Valid between lock and unlock: height() rows of bytesPerRow() bytes, 4 bytes per pixel
    // in the order blue, green, red, alpha.
    std::uint8_t* baseAddress();
    std::size_t bytesPerRow() const;

    Internal::PixelBufferState& state() { return *m_state; }
    const Internal::PixelBufferState& state() const { return *m_state; }

private:
    std::unique_ptr<Internal::PixelBufferState> m_state;
};

} // namespace Platform
