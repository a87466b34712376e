// SPDX-License-Identifier: GPL-3.0-or-later
// A drop-down of labelled choices that tells only the user's own picks (not the ones the model
// sets), so a view can follow its model without echoing every change back. GUI thread only.
#pragma once

#include <QComboBox>
#include <QList>
#include <QString>

namespace Ondrilet {

class ChoiceBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ChoiceBox(const QString& accessibleName, QWidget* parent = nullptr);

    // Replaces the choices: one label per choice, told apart by their position. The current
    // choice is set again without a signal.
    void setChoices(const QStringList& labels, int current);
    // Shows `index` as chosen (-1: none, showing the placeholder) without a signal.
    void showChoice(int index);
    QStringList labels() const;

    // Picks choice `index` as the user would.
    void pick(int index);

signals:
    // The user picked the choice at `index`.
    void picked(int index);
};

} // namespace Ondrilet
