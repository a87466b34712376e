#include "platform/media/AssetReaderOutput.h"

#include "platform/media/internal/ReaderState.h"

namespace platform {

AssetReaderOutput::~AssetReaderOutput() = default;

} // namespace platform
