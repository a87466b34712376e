// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/MetadataEditorView.h"

#include "app/metadata/MetadataEditorModel.h"
#include "app/views/AppearancePalette.h"
#include "app/views/SymbolIcon.h"

#include <QCheckBox>
#include <QDateTimeEdit>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

void showText(QLineEdit* edit, const QString& text)
{
    if (edit->text() != text)
        edit->setText(text);
}

void showChecked(QCheckBox* box, bool checked)
{
    const QSignalBlocker blocker(box);
    box->setChecked(checked);
}

QLabel* secondaryLabel(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setWordWrap(true);
    QPalette colours = label->palette();
    colours.setColor(QPalette::WindowText, AppearancePalette::secondaryText(parent->palette()));
    label->setPalette(colours);
    return label;
}

} // namespace

MetadataEditorView::MetadataEditorView(MetadataEditorModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    m_disclosure = new QToolButton(this);
    m_disclosure->setText(QStringLiteral("Metadata Editor"));
    m_disclosure->setAccessibleName(QStringLiteral("Metadata Editor"));
    m_disclosure->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_disclosure->setAutoRaise(true);
    QFont bold = m_disclosure->font();
    bold.setBold(true);
    m_disclosure->setFont(bold);
    connect(m_disclosure, &QToolButton::clicked, model,
            [model] { model->setMetadataEditorExpanded(!model->isMetadataEditorExpanded()); });

    m_content = new QWidget;
    auto* contentLayout = new QVBoxLayout(m_content);
    contentLayout->setContentsMargins(8, 4, 8, 4);
    contentLayout->setSpacing(8);

    m_format = secondaryLabel(QString(), m_content);
    contentLayout->addWidget(m_format);

    m_keepOriginalDate = new QCheckBox(QStringLiteral("Keep Original Date"), m_content);
    m_keepOriginalDate->setToolTip(QStringLiteral("Preserves the original file's creation date"));
    connect(m_keepOriginalDate, &QCheckBox::toggled, model,
            &MetadataEditorModel::setMetadataKeepOriginalDate);
    m_useCustomDate = new QCheckBox(QStringLiteral("Set Custom Date"), m_content);
    connect(m_useCustomDate, &QCheckBox::toggled, model,
            &MetadataEditorModel::setMetadataUseCustomDate);
    m_customDate = new QDateTimeEdit(m_content);
    m_customDate->setCalendarPopup(true);
    m_customDate->setAccessibleName(QStringLiteral("Custom creation date"));
    connect(m_customDate, &QDateTimeEdit::dateTimeChanged, model,
            &MetadataEditorModel::setMetadataCustomCreationDate);
    m_writeToFilename = new QCheckBox(QStringLiteral("Write to Filename"), m_content);
    m_writeToFilename->setToolTip(QStringLiteral("Appends creation date to output filename"));
    connect(m_writeToFilename, &QCheckBox::toggled, model,
            &MetadataEditorModel::setMetadataWriteDateToFilename);
    auto* customRow = new QHBoxLayout;
    customRow->setContentsMargins(24, 0, 0, 0);
    customRow->addWidget(m_customDate, 1);
    contentLayout->addWidget(m_keepOriginalDate);
    contentLayout->addWidget(m_useCustomDate);
    contentLayout->addLayout(customRow);
    contentLayout->addWidget(m_writeToFilename);
    m_summary = secondaryLabel(QString(), m_content);
    m_summary->setAccessibleName(QStringLiteral("Creation date"));
    contentLayout->addWidget(m_summary);

    auto* form = new QFormLayout;
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setHorizontalSpacing(12);
    form->setVerticalSpacing(6);
    m_title = addField(form, QStringLiteral("Title:"), &MetadataEditorModel::setMetadataTitle);
    m_artist = addField(form, QStringLiteral("Artist:"), &MetadataEditorModel::setMetadataArtist);
    m_album = addField(form, QStringLiteral("Album:"), &MetadataEditorModel::setMetadataAlbum);
    m_genre = addField(form, QStringLiteral("Genre:"), &MetadataEditorModel::setMetadataGenre);
    m_year = addField(form, QStringLiteral("Year:"), &MetadataEditorModel::setMetadataYear);
    m_composer =
        addField(form, QStringLiteral("Composer:"), &MetadataEditorModel::setMetadataComposer);
    m_albumArtist = addField(form, QStringLiteral("Album Artist:"),
                             &MetadataEditorModel::setMetadataAlbumArtist);
    m_comments =
        addField(form, QStringLiteral("Comments:"), &MetadataEditorModel::setMetadataComments);
    contentLayout->addLayout(form);
    contentLayout->addStretch(1);

    m_scroll = new QScrollArea(this);
    m_scroll->setWidget(m_content);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(4);
    layout->addWidget(m_disclosure, 0, Qt::AlignLeft);
    layout->addWidget(m_scroll, 1);

    const auto refreshView = [this] { refresh(); };
    for (const auto signal :
         {&MetadataEditorModel::metadataTitleChanged, &MetadataEditorModel::metadataArtistChanged,
          &MetadataEditorModel::metadataAlbumChanged, &MetadataEditorModel::metadataGenreChanged,
          &MetadataEditorModel::metadataYearChanged, &MetadataEditorModel::metadataComposerChanged,
          &MetadataEditorModel::metadataAlbumArtistChanged,
          &MetadataEditorModel::metadataCommentsChanged,
          &MetadataEditorModel::detectedFileFormatChanged}) {
        connect(model, signal, this, refreshView);
    }
    for (const auto signal : {&MetadataEditorModel::isMetadataEditorExpandedChanged,
                              &MetadataEditorModel::metadataKeepOriginalDateChanged,
                              &MetadataEditorModel::metadataUseCustomDateChanged,
                              &MetadataEditorModel::metadataWriteDateToFilenameChanged}) {
        connect(model, signal, this, refreshView);
    }
    connect(model, &MetadataEditorModel::metadataCustomCreationDateChanged, this, refreshView);
    connect(model, &MetadataEditorModel::summaryChanged, this, refreshView);
    connect(model, &MetadataEditorModel::isMetadataEditorExpandedChanged, this,
            &MetadataEditorView::expandedChanged);
    refresh();
}

QLineEdit* MetadataEditorView::addField(QFormLayout* form, const QString& label,
                                        void (MetadataEditorModel::*setter)(const QString&))
{
    auto* edit = new QLineEdit(m_content);
    edit->setAccessibleName(label.chopped(1));
    edit->setClearButtonEnabled(true);
    connect(edit, &QLineEdit::textEdited, m_model, setter);
    form->addRow(label, edit);
    return edit;
}

void MetadataEditorView::refresh()
{
    const bool expanded = m_model->isMetadataEditorExpanded();
    m_disclosure->setAccessibleDescription(expanded ? QStringLiteral("Expanded")
                                                    : QStringLiteral("Collapsed"));
    m_disclosure->setIcon(SymbolIcon::icon(expanded ? QStringLiteral("chevron.down")
                                                    : QStringLiteral("chevron.right"),
                                           AppearancePalette::secondaryText(palette())));
    m_scroll->setVisible(expanded);

    const QString format = m_model->detectedFileFormat();
    m_format->setText(format.isEmpty() ? QString()
                                       : QStringLiteral("Detected format: %1").arg(format));
    m_format->setVisible(!format.isEmpty());

    showChecked(m_keepOriginalDate, m_model->metadataKeepOriginalDate());
    showChecked(m_useCustomDate, m_model->metadataUseCustomDate());
    showChecked(m_writeToFilename, m_model->metadataWriteDateToFilename());
    {
        const QSignalBlocker blocker(m_customDate);
        m_customDate->setDateTime(m_model->metadataCustomCreationDate());
    }
    m_customDate->setEnabled(m_model->metadataUseCustomDate());
    m_summary->setText(m_model->creationDateSummary());

    showText(m_title, m_model->metadataTitle());
    showText(m_artist, m_model->metadataArtist());
    showText(m_album, m_model->metadataAlbum());
    showText(m_genre, m_model->metadataGenre());
    showText(m_year, m_model->metadataYear());
    showText(m_composer, m_model->metadataComposer());
    showText(m_albumArtist, m_model->metadataAlbumArtist());
    showText(m_comments, m_model->metadataComments());
}

} // namespace Ondrilet
