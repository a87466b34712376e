// SPDX-License-Identifier: GPL-3.0-or-later
// The JSON that --inspect prints for one inspected file: the MediaFile's fields in their order,
// each video stream with how its interlacing and field order were decided and the deinterlacing
// the engine would choose for it by itself, and each audio stream. Keys and their values are
// documented in docs/inspect-json.md; scripts rely on them. Pure; any thread.
#pragma once

#include "ConversionEngine/inspection/MediaFile.h"

#include <QString>
#include <QStringList>

namespace Ondrilet {

class InspectReport
{
public:
    // One object, indented by `indent` spaces, without a final line feed.
    static QString json(const QString& path, const ConversionEngine::MediaFileAnalysis& analysis,
                        int indent = 0);
    // What standard output receives, ending with a line feed: for one file asked for, its object
    // (nothing when it could not be inspected); for several, an array of the objects of those
    // that could, in the order asked, so that the shape depends only on the command line.
    static QString document(const QStringList& objects, bool severalFiles);

    // The names the report gives the deciding steps.
    static QString stepName(ConversionEngine::InterlacingStep step);
    static QString stepName(ConversionEngine::FieldDominanceStep step);
};

} // namespace Ondrilet
