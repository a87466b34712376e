// SPDX-License-Identifier: GPL-3.0-or-later
// A titled section of the settings: a bold title over a softly framed card that holds a form
// with right-aligned labels. Only looks; it knows nothing of what it holds. GUI thread only.
#pragma once

#include <QString>
#include <QWidget>

class QFormLayout;
class QFrame;
class QLabel;
class QVBoxLayout;

namespace Ondrilet {

class SectionView : public QWidget
{
    Q_OBJECT

public:
    explicit SectionView(const QString& title, QWidget* parent = nullptr);

    QString title() const;
    // The two-column form of the card.
    QFormLayout* form() const { return m_form; }
    // For whatever goes under the form inside the card.
    QVBoxLayout* cardLayout() const { return m_cardLayout; }

    // A form row that is shown or hidden with its label.
    void setRowVisible(QWidget* field, bool visible);

private:
    QLabel* m_title = nullptr;
    QFrame* m_card = nullptr;
    QVBoxLayout* m_cardLayout = nullptr;
    QFormLayout* m_form = nullptr;
};

} // namespace Ondrilet
