// SPDX-License-Identifier: GPL-3.0-or-later
// A window-modal warning that asks before something that cannot be taken back: a title, an
// explanation, a cancel button (the default, also on Escape) and a confirm button in the
// destructive role. It deletes itself when closed. GUI thread only.
#pragma once

#include <QString>

class QMessageBox;
class QPushButton;
class QWidget;

namespace Ondrilet {

class QuestionBox
{
public:
    struct Parts
    {
        QMessageBox* box = nullptr;
        QPushButton* cancel = nullptr;
        QPushButton* confirm = nullptr;
    };

    // Builds the box over `parent` without showing it; the caller connects the buttons and
    // calls open().
    static Parts make(QWidget* parent, const QString& objectName, const QString& title,
                      const QString& text, const QString& cancelLabel, const QString& confirmLabel);
};

} // namespace Ondrilet
