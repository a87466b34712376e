// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/QuestionBox.h"

#include <QMessageBox>
#include <QPushButton>

namespace Ondrilet {

QuestionBox::Parts QuestionBox::make(QWidget* parent, const QString& objectName,
                                     const QString& title, const QString& text,
                                     const QString& cancelLabel, const QString& confirmLabel)
{
    Parts parts;
    parts.box = new QMessageBox(parent);
    parts.box->setObjectName(objectName);
    parts.box->setAttribute(Qt::WA_DeleteOnClose);
    parts.box->setWindowModality(Qt::WindowModal);
    parts.box->setIcon(QMessageBox::Warning);
    parts.box->setWindowTitle(title);
    parts.box->setText(title);
    parts.box->setInformativeText(text);
    parts.cancel = parts.box->addButton(cancelLabel, QMessageBox::RejectRole);
    parts.confirm = parts.box->addButton(confirmLabel, QMessageBox::DestructiveRole);
    parts.box->setDefaultButton(parts.cancel);
    parts.box->setEscapeButton(parts.cancel);
    return parts;
}

} // namespace Ondrilet
