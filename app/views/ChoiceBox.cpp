// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/ChoiceBox.h"

#include <QSignalBlocker>

namespace Ondrilet {

ChoiceBox::ChoiceBox(const QString& accessibleName, QWidget* parent)
    : QComboBox(parent)
{
    setAccessibleName(accessibleName);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(12);
    connect(this, &QComboBox::activated, this, &ChoiceBox::picked);
}

void ChoiceBox::setChoices(const QStringList& labels, int current)
{
    if (labels != this->labels()) {
        const QSignalBlocker blocker(this);
        clear();
        addItems(labels);
    }
    showChoice(current);
}

void ChoiceBox::showChoice(int index)
{
    if (index == currentIndex())
        return;
    const QSignalBlocker blocker(this);
    setCurrentIndex(index);
}

QStringList ChoiceBox::labels() const
{
    QStringList result;
    for (int index = 0; index < count(); ++index)
        result.append(itemText(index));
    return result;
}

void ChoiceBox::pick(int index)
{
    setCurrentIndex(index);
    emit activated(index);
}

} // namespace Ondrilet
