// SPDX-License-Identifier: GPL-3.0-or-later
// A one-line label that never clips: text that does not fit ends in an ellipsis, and the whole
// text shows as its tooltip. GUI thread only.
#pragma once

#include <QLabel>
#include <QString>

namespace Ondrilet {

class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr, Qt::TextElideMode mode = Qt::ElideMiddle);

    // The whole text; text() may hold the shortened one.
    QString fullText() const { return m_fullText; }
    void setFullText(const QString& text);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();

    QString m_fullText;
    Qt::TextElideMode m_mode;
};

} // namespace Ondrilet
