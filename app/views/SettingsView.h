// SPDX-License-Identifier: GPL-3.0-or-later
// The Settings window's content: the theme, the default output folder and the notes on opening
// files from the desktop. It binds to SettingsModel; applying the look is the palette's job, asked
// for by the model when the window appears and when the theme changes. GUI thread only.
#pragma once

#include <QWidget>

class QLineEdit;
class QPushButton;

namespace Ondrilet {

class ChoiceBox;
class SettingsModel;

class SettingsView : public QWidget
{
    Q_OBJECT

public:
    explicit SettingsView(SettingsModel* model, QWidget* parent = nullptr);

    ChoiceBox* themeBox() const { return m_theme; }
    QLineEdit* pathField() const { return m_path; }
    QPushButton* chooseButton() const { return m_choose; }

signals:
    // The user pressed "Choose...": the window that holds this asks for a folder.
    void chooseDirectoryRequested();

protected:
    void showEvent(QShowEvent* event) override;

private:
    void refresh();

    SettingsModel* m_model = nullptr;
    ChoiceBox* m_theme = nullptr;
    QLineEdit* m_path = nullptr;
    QPushButton* m_choose = nullptr;
};

} // namespace Ondrilet
