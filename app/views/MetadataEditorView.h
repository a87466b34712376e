// SPDX-License-Identifier: GPL-3.0-or-later
// The collapsible metadata editor under the file list: the detected format, the creation-date
// options with their summary line, and the tag fields. What is typed goes straight to the model,
// which decides when it is stored. GUI thread only.
#pragma once

#include <QWidget>

class QCheckBox;
class QDateTimeEdit;
class QFormLayout;
class QLabel;
class QLineEdit;
class QScrollArea;
class QToolButton;

namespace Ondrilet {

class MetadataEditorModel;

class MetadataEditorView : public QWidget
{
    Q_OBJECT

public:
    explicit MetadataEditorView(MetadataEditorModel* model, QWidget* parent = nullptr);

    QWidget* content() const { return m_content; }

    void refresh();

signals:
    // The editor opened or closed, so the column can share its height anew.
    void expandedChanged(bool expanded);

private:
    QLineEdit* addField(QFormLayout* form, const QString& label,
                        void (MetadataEditorModel::*setter)(const QString&));

    MetadataEditorModel* m_model = nullptr;
    QToolButton* m_disclosure = nullptr;
    QScrollArea* m_scroll = nullptr;
    QWidget* m_content = nullptr;
    QLabel* m_format = nullptr;
    QCheckBox* m_keepOriginalDate = nullptr;
    QCheckBox* m_useCustomDate = nullptr;
    QDateTimeEdit* m_customDate = nullptr;
    QCheckBox* m_writeToFilename = nullptr;
    QLabel* m_summary = nullptr;
    QLineEdit* m_title = nullptr;
    QLineEdit* m_artist = nullptr;
    QLineEdit* m_album = nullptr;
    QLineEdit* m_genre = nullptr;
    QLineEdit* m_year = nullptr;
    QLineEdit* m_composer = nullptr;
    QLineEdit* m_albumArtist = nullptr;
    QLineEdit* m_comments = nullptr;
};

} // namespace Ondrilet
