// SPDX-License-Identifier: GPL-3.0-or-later
// Which field comes first, or that there are no fields, as core sees it: the engine's field
// dominance cases in the same order, so the engine maps its own value across case by case.
// Any thread.
#pragma once

namespace ConversionEngine {

enum class FieldDominanceKind
{
    progressive,
    topFieldFirst,
    bottomFieldFirst,
};

} // namespace ConversionEngine
