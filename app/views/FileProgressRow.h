// SPDX-License-Identifier: GPL-3.0-or-later
// One file of a batch in the batch window: the status symbol in the status colour, the file name
// and the percentage. Clicking it asks for the file's details. GUI thread only.
#pragma once

#include "app/batch/FileConversionProgress.h"

#include <QWidget>

class QLabel;

namespace Ondrilet {

class ElidedLabel;

class FileProgressRow : public QWidget
{
    Q_OBJECT

public:
    explicit FileProgressRow(const FileConversionProgress& fileProgress, QWidget* parent = nullptr);

    const FileConversionProgress& fileProgress() const { return m_fileProgress; }
    void setFileProgress(const FileConversionProgress& fileProgress);
    QString percentText() const;

signals:
    void clicked(const Ondrilet::FileConversionProgress& fileProgress);

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();

    FileConversionProgress m_fileProgress;
    QLabel* m_symbol = nullptr;
    ElidedLabel* m_name = nullptr;
    QLabel* m_percent = nullptr;
};

} // namespace Ondrilet
