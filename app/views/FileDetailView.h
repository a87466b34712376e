// SPDX-License-Identifier: GPL-3.0-or-later
// "File Details": one file of a batch, row by row — name, status, progress, sizes, speed and
// times. A time that is not known leaves its row out. GUI thread only.
#pragma once

#include "app/batch/FileConversionProgress.h"

#include <QWidget>

#include <optional>

class QFormLayout;

namespace Ondrilet {

class FileDetailView : public QWidget
{
    Q_OBJECT

public:
    explicit FileDetailView(const FileConversionProgress& fileProgress, QWidget* parent = nullptr);

    // The rows as shown, label and value, in order.
    struct Row
    {
        QString label;
        QString value;
    };
    static QList<Row> rows(const FileConversionProgress& fileProgress);
    QList<Row> shownRows() const { return m_rows; }

private:
    QList<Row> m_rows;
};

} // namespace Ondrilet
