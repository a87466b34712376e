// Which field of an interlaced frame comes first, or that the frame is progressive, with the
// texts the front end shows for it. Plain value; any thread.
#pragma once

#include <QString>

#include <array>

namespace ConversionEngine {

enum class FieldDominance
{
    progressive,
    topFieldFirst,
    bottomFieldFirst,
};

// The case's own name ("topFieldFirst"), as console lines print it.
QString caseName(FieldDominance dominance);
QString displayName(FieldDominance dominance);
QString shortName(FieldDominance dominance);
QString description(FieldDominance dominance);
QString symbolName(FieldDominance dominance);

inline const std::array<FieldDominance, 3>& allFieldDominances()
{
    static constexpr std::array<FieldDominance, 3> cases{
        FieldDominance::progressive,
        FieldDominance::topFieldFirst,
        FieldDominance::bottomFieldFirst,
    };
    return cases;
}

} // namespace ConversionEngine
