// SPDX-License-Identifier: GPL-3.0-or-later
// One figure of the progress windows as a framed tile: the symbol, the value large and the title
// small. The batch window's metrics and the tracker's detailed metrics both use it. GUI thread.
#pragma once

#include <QFrame>

class QLabel;

namespace Ondrilet {

class MetricCard : public QFrame
{
    Q_OBJECT

public:
    // An empty symbol name shows no symbol.
    MetricCard(const QString& title, const QString& symbol, QWidget* parent = nullptr);

    QString title() const;
    QString value() const;
    void setValue(const QString& value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void refreshIcon();

    QString m_symbol;
    QLabel* m_icon = nullptr;
    QLabel* m_value = nullptr;
    QLabel* m_title = nullptr;
};

} // namespace Ondrilet
