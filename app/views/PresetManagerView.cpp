// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/PresetManagerView.h"

#include "app/presets/PresetManagerModel.h"
#include "app/views/ChoiceBox.h"
#include "app/views/SecondaryLabel.h"
#include "app/views/SectionView.h"
#include "app/views/SymbolIcon.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QSplitter>
#include <QStackedWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace Ondrilet {

namespace {

constexpr int listPaneWidth = 260;

QToolButton* iconButton(const QString& symbol, const QString& help, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setIcon(SymbolIcon::icon(symbol));
    button->setToolTip(help);
    button->setAccessibleName(help);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QString withoutColon(const QString& label)
{
    return label.endsWith(QLatin1Char(':')) ? label.chopped(1) : label;
}

// A slider with its value written beside it.
QWidget* sliderRow(QSlider* slider, QLabel* value, QWidget* parent)
{
    auto* row = new QWidget(parent);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    slider->setOrientation(Qt::Horizontal);
    value->setMinimumWidth(value->fontMetrics().horizontalAdvance(QStringLiteral("-20.0 dBFS")));
    layout->addWidget(slider, 1);
    layout->addWidget(value);
    return row;
}

} // namespace

PresetManagerView::PresetManagerView(PresetManagerModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setAccessibleName(QStringLiteral("Preset Manager"));
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(makeListPane());
    splitter->addWidget(makeEditorPane());
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({listPaneWidth, 640});

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(splitter);

    connect(model, &PresetManagerModel::presetsChanged, this, &PresetManagerView::refreshList);
    connect(model, &PresetManagerModel::selectionChanged, this, &PresetManagerView::refreshList);
    connect(model, &PresetManagerModel::editingChanged, this, &PresetManagerView::refreshEditor);
    refreshList();
    refreshEditor();
}

QWidget* PresetManagerView::makeListPane()
{
    auto* pane = new QWidget(this);
    pane->setMinimumWidth(200);
    pane->resize(listPaneWidth, pane->height());
    auto* layout = new QVBoxLayout(pane);
    layout->setContentsMargins(16, 16, 8, 16);
    layout->setSpacing(8);

    auto* header = new QHBoxLayout;
    auto* heading = new QLabel(PresetManagerModel::listHeading, pane);
    QFont headingFont = heading->font();
    headingFont.setBold(true);
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.15);
    heading->setFont(headingFont);
    header->addWidget(heading, 1);
    m_add = iconButton(QStringLiteral("plus"), PresetManagerModel::addHelp, pane);
    m_remove = iconButton(QStringLiteral("minus"), PresetManagerModel::removeHelp, pane);
    m_reset =
        iconButton(QStringLiteral("arrow.clockwise"), PresetManagerModel::factoryResetHelp, pane);
    header->addWidget(m_add);
    header->addWidget(m_remove);
    header->addWidget(m_reset);
    layout->addLayout(header);

    m_list = new QListWidget(pane);
    m_list->setAccessibleName(QStringLiteral("Presets"));
    m_list->setIconSize(QSize(18, 18));
    m_list->setUniformItemSizes(true);
    m_list->setTextElideMode(Qt::ElideRight);
    layout->addWidget(m_list, 1);

    connect(m_add, &QToolButton::clicked, m_model, &PresetManagerModel::add);
    connect(m_remove, &QToolButton::clicked, m_model, &PresetManagerModel::remove);
    connect(m_reset, &QToolButton::clicked, m_model, &PresetManagerModel::factoryReset);
    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (m_refreshing)
            return;
        const QList<AnyPreset>& presets = m_model->presets();
        m_model->select(row >= 0 && row < presets.size() ? std::optional<QUuid>(presets[row].id())
                                                         : std::nullopt);
    });
    return pane;
}

QWidget* PresetManagerView::makeEditorPane()
{
    m_pages = new QStackedWidget(this);
    m_hint = new SecondaryLabel(PresetManagerModel::emptyHint, m_pages);
    m_hint->setAlignment(Qt::AlignCenter);
    m_pages->addWidget(m_hint);

    m_editorScroll = new QScrollArea(m_pages);
    m_editorScroll->setWidgetResizable(true);
    m_editorScroll->setFrameShape(QFrame::NoFrame);
    m_editorScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* editor = new QWidget;
    auto* layout = new QVBoxLayout(editor);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(16);

    auto* header = new QHBoxLayout;
    header->setSpacing(8);
    auto* icon = new QLabel(editor);
    icon->setPixmap(SymbolIcon::icon(QStringLiteral("slider.horizontal.3")).pixmap(20, 20));
    header->addWidget(icon);
    auto* heading = new QLabel(PresetManagerModel::editorHeading, editor);
    QFont headingFont = heading->font();
    headingFont.setBold(true);
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.15);
    heading->setFont(headingFont);
    header->addWidget(heading, 1);
    m_save = new QPushButton(QStringLiteral("Save"), editor);
    m_duplicate = new QPushButton(QStringLiteral("Duplicate"), editor);
    m_delete = new QPushButton(QStringLiteral("Delete"), editor);
    m_save->setDefault(true);
    header->addWidget(m_save);
    header->addWidget(m_duplicate);
    header->addWidget(m_delete);
    layout->addLayout(header);
    connect(m_save, &QPushButton::clicked, m_model, &PresetManagerModel::save);
    connect(m_duplicate, &QPushButton::clicked, m_model, &PresetManagerModel::duplicate);
    connect(m_delete, &QPushButton::clicked, m_model, &PresetManagerModel::remove);

    addGeneralSection(editor, layout);
    addVideoSection(editor, layout);
    addAudioSection(editor, layout);
    addLevelSection(editor, layout);
    addMetadataSection(editor, layout);
    layout->addStretch(1);
    alignFormLabels(editor);

    m_editorScroll->setWidget(editor);
    m_pages->addWidget(m_editorScroll);
    return m_pages;
}

template <typename Change>
void PresetManagerView::edit(Change change)
{
    if (m_refreshing)
        return;
    PresetEditingFields fields = m_model->editing();
    change(fields);
    m_model->setEditing(fields);
}

void PresetManagerView::addGeneralSection(QWidget* parent, QVBoxLayout* layout)
{
    auto* section = new SectionView(QStringLiteral("General"), parent);
    m_name = new QLineEdit(section);
    m_name->setPlaceholderText(PresetManagerModel::namePlaceholder);
    m_name->setAccessibleName(QStringLiteral("Name"));
    section->form()->addRow(QStringLiteral("Name:"), m_name);
    m_format = new ChoiceBox(QStringLiteral("Format"), section);
    m_format->setChoices(PresetManagerModel::outputFormatLabels(), -1);
    section->form()->addRow(QStringLiteral("Format:"), m_format);
    layout->addWidget(section);

    connect(m_name, &QLineEdit::textEdited, this,
            [this](const QString& text) { edit([&](PresetEditingFields& f) { f.name = text; }); });
    connect(m_format, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) { f.outputFormat = allOutputFormats()[row]; });
    });
}

void PresetManagerView::addVideoSection(QWidget* parent, QVBoxLayout* layout)
{
    m_videoSection = new SectionView(QStringLiteral("Video Settings"), parent);
    QFormLayout* form = m_videoSection->form();
    m_videoCodec = new ChoiceBox(QStringLiteral("Video codec"), m_videoSection);
    m_videoCodec->setChoices(PresetManagerModel::videoCodecLabels(), -1);
    form->addRow(QStringLiteral("Codec:"), m_videoCodec);
    m_resolution = new ChoiceBox(QStringLiteral("Resolution"), m_videoSection);
    m_resolution->setChoices(PresetManagerModel::resolutionLabels(), -1);
    form->addRow(QStringLiteral("Resolution:"), m_resolution);
    m_frameRate = new ChoiceBox(QStringLiteral("Frame Rate"), m_videoSection);
    m_frameRate->setChoices(PresetManagerModel::frameRateLabels(), -1);
    form->addRow(QStringLiteral("Frame Rate:"), m_frameRate);
    m_crf = new QSlider(m_videoSection);
    m_crf->setRange(PresetManagerModel::crfMinimum, PresetManagerModel::crfMaximum);
    m_crf->setSingleStep(1);
    m_crf->setPageStep(1);
    m_crf->setAccessibleName(QStringLiteral("Quality (CRF)"));
    m_crfValue = new QLabel(m_videoSection);
    form->addRow(QStringLiteral("Quality (CRF):"), sliderRow(m_crf, m_crfValue, m_videoSection));
    m_interlacing = new ChoiceBox(QStringLiteral("Interlacing"), m_videoSection);
    m_interlacing->setChoices(PresetManagerModel::interlacingLabels(), -1);
    form->addRow(QStringLiteral("Interlacing:"), m_interlacing);
    layout->addWidget(m_videoSection);

    connect(m_videoCodec, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) { f.videoCodec = allVideoCodecs()[row]; });
    });
    connect(m_resolution, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) {
            f.resolution = PresetManagerModel::resolutionChoices().at(row);
        });
    });
    connect(m_frameRate, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) {
            f.frameRate = ConversionEngine::allVideoFrameRates()[row];
        });
    });
    connect(m_crf, &QSlider::valueChanged, this, [this](int value) {
        m_crfValue->setText(QString::number(value));
        edit([&](PresetEditingFields& f) { f.crf = value; });
    });
    connect(m_interlacing, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) {
            f.interlacingHandlingMode = ConversionEngine::allInterlacingHandlingModes()[row];
        });
    });
}

void PresetManagerView::addAudioSection(QWidget* parent, QVBoxLayout* layout)
{
    auto* section = new SectionView(QStringLiteral("Audio Settings"), parent);
    QFormLayout* form = section->form();
    m_audioCodec = new ChoiceBox(QStringLiteral("Audio codec"), section);
    m_audioCodec->setChoices(PresetManagerModel::audioCodecLabels(), -1);
    form->addRow(QStringLiteral("Codec:"), m_audioCodec);
    m_sampleRate = new ChoiceBox(QStringLiteral("Sample Rate"), section);
    m_sampleRate->setChoices(PresetManagerModel::sampleRateLabels(), -1);
    form->addRow(QStringLiteral("Sample Rate:"), m_sampleRate);
    m_bitDepth = new ChoiceBox(QStringLiteral("Bit Depth"), section);
    m_bitDepth->setChoices(PresetManagerModel::bitDepthLabels(), -1);
    form->addRow(QStringLiteral("Bit Depth:"), m_bitDepth);
    m_bitrate = new ChoiceBox(QStringLiteral("Bitrate"), section);
    form->addRow(QStringLiteral("Bitrate:"), m_bitrate);
    layout->addWidget(section);

    connect(m_audioCodec, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) {
            f.audioCodec = PresetManagerModel::audioCodecChoices().at(row);
        });
    });
    connect(m_sampleRate, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) { f.audioSampleRate = allSampleRates()[row]; });
    });
    connect(m_bitDepth, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) { f.audioBitDepth = allBitDepths()[row]; });
    });
    connect(m_bitrate, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) {
            f.audioBitrate = PresetManagerModel::bitrateChoices(f.audioCodec).at(row);
        });
    });
}

void PresetManagerView::addLevelSection(QWidget* parent, QVBoxLayout* layout)
{
    m_levelSection = new SectionView(QStringLiteral("Audio Level Processing"), parent);
    QFormLayout* form = m_levelSection->form();
    m_levelMode = new ChoiceBox(QStringLiteral("Level Processing"), m_levelSection);
    m_levelMode->setChoices(PresetManagerModel::levelModeLabels(), -1);
    form->addRow(QStringLiteral("Level Processing:"), m_levelMode);

    m_dbfs = new QSlider(m_levelSection);
    m_dbfs->setRange(int(std::lround(PresetManagerModel::dbfsMinimum * 10)),
                     int(std::lround(PresetManagerModel::dbfsMaximum * 10)));
    m_dbfs->setAccessibleName(withoutColon(QStringLiteral("Target Peak:")));
    m_dbfsValue = new QLabel(m_levelSection);
    m_dbfsRow = sliderRow(m_dbfs, m_dbfsValue, m_levelSection);
    form->addRow(QStringLiteral("Target Peak:"), m_dbfsRow);

    m_lufsPreset = new ChoiceBox(QStringLiteral("Loudness Target"), m_levelSection);
    m_lufsPreset->setChoices(PresetManagerModel::lufsPresetLabels(), -1);
    form->addRow(QStringLiteral("Loudness Target:"), m_lufsPreset);

    m_customLufs = new QSlider(m_levelSection);
    m_customLufs->setRange(int(PresetManagerModel::lufsMinimum),
                           int(PresetManagerModel::lufsMaximum));
    m_customLufs->setAccessibleName(QStringLiteral("Custom LUFS"));
    m_customValue = new QLabel(m_levelSection);
    m_customRow = sliderRow(m_customLufs, m_customValue, m_levelSection);
    form->addRow(QStringLiteral("Custom LUFS:"), m_customRow);
    layout->addWidget(m_levelSection);

    connect(m_levelMode, &ChoiceBox::picked, this, [this](int row) {
        edit([&](PresetEditingFields& f) { f.levelMode = allLevelModes()[row]; });
    });
    connect(m_dbfs, &QSlider::valueChanged, this, [this](int tenths) {
        edit([&](PresetEditingFields& f) { f.dbfsTarget = float(tenths) / 10.0f; });
    });
    connect(m_lufsPreset, &ChoiceBox::picked, m_model, &PresetManagerModel::pickLufsPreset);
    connect(m_customLufs, &QSlider::valueChanged, this, [this](int lufs) {
        if (!m_refreshing)
            m_model->setCustomLufs(float(lufs));
    });
}

void PresetManagerView::addMetadataSection(QWidget* parent, QVBoxLayout* layout)
{
    auto* section = new SectionView(QStringLiteral("Metadata Settings"), parent);
    m_keepDate = new QCheckBox(QStringLiteral("Keep Original Date"), section);
    m_keepDate->setToolTip(PresetManagerModel::keepDateHelp);
    m_keepDate->setAccessibleDescription(PresetManagerModel::keepDateHelp);
    m_writeDate = new QCheckBox(QStringLiteral("Write to Filename"), section);
    m_writeDate->setToolTip(PresetManagerModel::writeDateHelp);
    m_writeDate->setAccessibleDescription(PresetManagerModel::writeDateHelp);
    section->form()->addRow(m_keepDate);
    section->form()->addRow(m_writeDate);
    layout->addWidget(section);

    connect(m_keepDate, &QCheckBox::toggled, this,
            [this](bool on) { edit([&](PresetEditingFields& f) { f.keepOriginalDate = on; }); });
    connect(m_writeDate, &QCheckBox::toggled, this,
            [this](bool on) { edit([&](PresetEditingFields& f) { f.writeDateToFilename = on; }); });
}

void PresetManagerView::alignFormLabels(QWidget* editor)
{
    // One label column through every section, as if the editor were one form.
    QList<QWidget*> labels;
    int widest = 0;
    for (QFormLayout* form : editor->findChildren<QFormLayout*>()) {
        for (int row = 0; row < form->rowCount(); ++row) {
            QLayoutItem* item = form->itemAt(row, QFormLayout::LabelRole);
            if (item == nullptr || item->widget() == nullptr)
                continue;
            labels.append(item->widget());
            widest = std::max(widest, item->widget()->sizeHint().width());
        }
    }
    for (QWidget* label : labels) {
        label->setMinimumWidth(widest);
        if (auto* text = qobject_cast<QLabel*>(label))
            text->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    }
}

bool PresetManagerView::isEditorShown() const
{
    return m_pages->currentWidget() == m_editorScroll;
}

void PresetManagerView::refreshList()
{
    m_refreshing = true;
    m_list->clear();
    int selectedRow = -1;
    const QList<AnyPreset>& presets = m_model->presets();
    for (qsizetype row = 0; row < presets.size(); ++row) {
        const AnyPreset& preset = presets[row];
        auto* item = new QListWidgetItem(SymbolIcon::icon(PresetManagerModel::symbolName(preset)),
                                         preset.name(), m_list);
        item->setToolTip(preset.name());
        if (m_model->selectedPresetID() == preset.id() && selectedRow < 0)
            selectedRow = int(row);
    }
    m_list->setCurrentRow(selectedRow);
    m_remove->setEnabled(m_model->selectedPresetID().has_value());
    m_pages->setCurrentWidget(m_model->selectedPresetID() ? static_cast<QWidget*>(m_editorScroll)
                                                          : m_hint);
    m_refreshing = false;
}

void PresetManagerView::refreshEditor()
{
    m_refreshing = true;
    const PresetEditingFields& f = m_model->editing();
    if (m_name->text() != f.name)
        m_name->setText(f.name);
    const auto indexIn = [](const auto& all, const auto& value) {
        for (std::size_t i = 0; i < all.size(); ++i)
            if (all[i] == value)
                return int(i);
        return -1;
    };
    m_format->showChoice(indexIn(allOutputFormats(), f.outputFormat));
    m_videoCodec->showChoice(indexIn(allVideoCodecs(), f.videoCodec));
    m_resolution->showChoice(int(PresetManagerModel::resolutionChoices().indexOf(f.resolution)));
    m_frameRate->showChoice(indexIn(ConversionEngine::allVideoFrameRates(), f.frameRate));
    m_crf->setValue(int(f.crf));
    m_crfValue->setText(QString::number(f.crf));
    m_interlacing->showChoice(
        indexIn(ConversionEngine::allInterlacingHandlingModes(), f.interlacingHandlingMode));
    m_audioCodec->showChoice(int(PresetManagerModel::audioCodecChoices().indexOf(f.audioCodec)));
    m_sampleRate->showChoice(indexIn(allSampleRates(), f.audioSampleRate));
    m_bitDepth->showChoice(f.audioBitDepth ? indexIn(allBitDepths(), *f.audioBitDepth) : -1);
    const QList<AudioBitrate> bitrates = PresetManagerModel::bitrateChoices(f.audioCodec);
    m_bitrate->setChoices(PresetManagerModel::bitrateLabels(f.audioCodec),
                          f.audioBitrate ? int(bitrates.indexOf(*f.audioBitrate)) : -1);
    m_levelMode->showChoice(indexIn(allLevelModes(), f.levelMode));
    m_dbfs->setValue(int(std::lround(f.dbfsTarget * 10)));
    m_dbfsValue->setText(PresetManagerModel::dbfsText(f.dbfsTarget));
    m_lufsPreset->showChoice(PresetManagerModel::lufsPresetRow(f.lufsPreset));
    m_customLufs->setValue(int(std::lround(f.lufsTarget)));
    m_customValue->setText(PresetManagerModel::lufsText(f.lufsTarget));
    const bool custom = f.lufsPreset.kind == ConversionEngine::AudioLevelPreset::Kind::custom;
    m_levelSection->setRowVisible(m_dbfsRow, f.levelMode == LevelMode::dbfs);
    m_levelSection->setRowVisible(m_lufsPreset, f.levelMode == LevelMode::lufs);
    m_levelSection->setRowVisible(m_customRow, f.levelMode == LevelMode::lufs && custom);
    m_keepDate->setChecked(f.keepOriginalDate);
    m_writeDate->setChecked(f.writeDateToFilename);
    m_refreshing = false;
}

} // namespace Ondrilet
