// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/AssetReaderOutput.h"

#include "platform/media/internal/ReaderState.h"

namespace Platform {

AssetReaderOutput::~AssetReaderOutput() = default;

} // namespace Platform
