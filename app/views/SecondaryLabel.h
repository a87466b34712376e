// SPDX-License-Identifier: GPL-3.0-or-later
// A label in the palette's secondary text colour that keeps that colour when the look changes
// between light and dark. GUI thread only.
#pragma once

#include <QLabel>

namespace Ondrilet {

class SecondaryLabel : public QLabel
{
    Q_OBJECT

public:
    explicit SecondaryLabel(const QString& text = QString(), QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void takeColour();
};

} // namespace Ondrilet
