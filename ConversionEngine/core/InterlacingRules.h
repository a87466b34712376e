// SPDX-License-Identifier: GPL-3.0-or-later
// How a video track is judged interlaced and which field it shows first: the format keys in a
// fixed order, then guesses from the file name, the picture size and the frame rate. The steps
// are kept apart so that the engine can print what each found and await its loads in between.
// Pure; any thread.
#pragma once

#include "ConversionEngine/core/FieldDominanceKind.h"
#include "ConversionEngine/core/FieldKeys.h"

#include <optional>
#include <string>
#include <string_view>

namespace ConversionEngine {

// The step that decided whether a track is interlaced.
enum class InterlacingStep
{
    isInterlacedKey,
    cvFieldCountKey,
    fieldCountKey,
    fileName,
    standardDefinition,
    digitalVideo,
    // The heuristic ran and no rule of it held: progressive.
    noRule,
};

struct InterlacingVerdict
{
    bool isInterlaced = false;
    InterlacingStep step = InterlacingStep::noRule;
    // For a verdict from a key: the key's value (1 for true, 0 for false).
    std::int64_t keyValue = 0;
    // For a verdict from the file name: the token found in it.
    std::string fileNameToken;

    friend bool operator==(const InterlacingVerdict&, const InterlacingVerdict&) = default;
};

// The steps that read the keys: "IsInterlaced", then "CVFieldCount", then "FieldCount"; a count
// means interlaced only when it is exactly 2. Absent when no key answers, and the heuristic must
// run.
std::optional<InterlacingVerdict> interlacingFromKeys(const FieldKeys& keys);

// The first of "1080i", "720i", "50i", "60i", "_interlaced" that the (already lower-cased) file
// name contains anywhere, as a plain substring.
std::optional<std::string_view> interlacedFileNameToken(std::string_view lowerCasedName);

// Within a tenth of 25 or of 29.97, compared in single precision as the track reports its rate.
bool isInterlacingRate(float framesPerSecond);

// The heuristic: the file name's tokens when the file has a name, then the standard-definition
// rule (height at most 576 at an interlacing rate), then the DV rule (720 × 480 or 576 at an
// interlacing rate). The SD rule comes first and takes every case the DV rule would; the order
// is kept as it is.
InterlacingVerdict interlacingHeuristic(const std::optional<std::string>& lowerCasedFileName,
                                        float framesPerSecond, double width, double height);

// The step that decided the field order.
enum class FieldDominanceStep
{
    fieldDetailKey,
    fieldCountKey,
    // Interlacing detection ran: interlaced reads as top field first, otherwise progressive.
    interlacingDetection,
};

struct FieldDominanceVerdict
{
    std::optional<FieldDominanceKind> dominance;
    FieldDominanceStep step = FieldDominanceStep::interlacingDetection;

    friend bool operator==(const FieldDominanceVerdict&, const FieldDominanceVerdict&) = default;
};

// "FieldDetail" 1 top first, 2 bottom first, any other integer progressive; then "FieldCount"
// 1 progressive, 2 top first, any other integer no answer at all. Absent when neither key is
// there, and interlacing detection must run.
std::optional<FieldDominanceVerdict> fieldDominanceFromKeys(const FieldKeys& keys);

// What interlacing detection's answer says of the field order when no key did.
FieldDominanceVerdict fieldDominanceFromInterlacing(bool isInterlaced);

} // namespace ConversionEngine
