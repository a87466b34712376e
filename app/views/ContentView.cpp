// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/ContentView.h"

#include "app/metadata/MetadataEditorModel.h"
#include "app/presets/PresetStore.h"
#include "app/views/AppearancePalette.h"
#include "app/views/AudioSettingsView.h"
#include "app/views/ChoiceBox.h"
#include "app/views/FileListView.h"
#include "app/views/LevelProcessingView.h"
#include "app/views/MetadataEditorView.h"
#include "app/views/OptionsView.h"
#include "app/views/OutputView.h"
#include "app/views/ProgressAreaView.h"
#include "app/views/QuestionBox.h"
#include "app/views/VideoSettingsView.h"
#include "app/window/ContentViewModel.h"
#include "app/window/ConversionControls.h"
#include "app/window/FileListModel.h"
#include "app/window/FileListRules.h"
#include "app/window/WindowTexts.h"

#include <QDir>
#include <QFileDialog>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

QFrame* separator(QWidget* parent)
{
    auto* line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Plain);
    QPalette colours = line->palette();
    QColor tone = colours.color(QPalette::WindowText);
    tone.setAlphaF(0.12);
    colours.setColor(QPalette::WindowText, tone);
    line->setPalette(colours);
    return line;
}

// The prominent look of the one main action, in the palette's accent colour.
void makeProminent(QPushButton* button)
{
    button->setStyleSheet(QStringLiteral(
        "QPushButton { background-color: palette(highlight); color: palette(highlighted-text);"
        " border: none; border-radius: 6px; padding: 6px 20px; font-weight: bold; }"
        "QPushButton:hover { background-color: palette(link); }"
        "QPushButton:focus { border: 2px solid palette(light); }"
        "QPushButton:disabled { background-color: palette(midlight); color: palette(mid); }"));
}

} // namespace

ContentView::ContentView(ContentViewModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    auto* root = new QVBoxLayout(this);
    root->setContentsMargins(16, 12, 16, 12);
    root->setSpacing(12);
    root->addWidget(buildPresetBar());
    root->addWidget(separator(this));

    m_splitter = new QSplitter(Qt::Horizontal, this);
    m_splitter->setChildrenCollapsible(false);
    m_splitter->setHandleWidth(16);

    auto* leftColumn = new QWidget(m_splitter);
    auto* leftLayout = new QVBoxLayout(leftColumn);
    leftLayout->setContentsMargins(0, 0, 0, 0);
    leftLayout->setSpacing(12);
    m_fileList = new FileListView(model, leftColumn);
    m_metadataEditor = new MetadataEditorView(model->metadataEditor(), leftColumn);
    leftLayout->addWidget(m_fileList, 3);
    leftLayout->addWidget(m_metadataEditor, 0);
    leftColumn->setMinimumWidth(300);
    connect(m_fileList, &FileListView::addRequested, this, &ContentView::showOpenPanel);
    connect(m_metadataEditor, &MetadataEditorView::expandedChanged, this,
            [leftLayout, this](bool expanded) {
                leftLayout->setStretchFactor(m_metadataEditor, expanded ? 2 : 0);
            });

    m_splitter->addWidget(leftColumn);
    m_splitter->addWidget(buildSettingsColumn());
    m_splitter->setStretchFactor(0, 2);
    m_splitter->setStretchFactor(1, 3);
    m_splitter->setSizes({400, 840});
    root->addWidget(m_splitter, 1);

    root->addWidget(separator(this));
    root->addWidget(buildBottomBar());

    auto* addShortcut = new QShortcut(QKeySequence::Open, this);
    connect(addShortcut, &QShortcut::activated, this, &ContentView::showOpenPanel);

    connect(model, &ContentViewModel::alertChanged, this, &ContentView::showAlert);
    connect(model, &ContentViewModel::fileAlertChanged, this, &ContentView::showFileAlert);
    connect(model, &ContentViewModel::showOverwriteWarningChanged, this,
            &ContentView::showOverwriteAlert);

    setTabOrder(m_preset, m_fileList->addButton());
    refreshPresets();
    refreshFormat();
    refreshConvertButton();
}

QWidget* ContentView::buildPresetBar()
{
    auto* bar = new QWidget(this);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    auto* label = new QLabel(QStringLiteral("Preset"), bar);
    QFont bold = label->font();
    bold.setBold(true);
    label->setFont(bold);
    m_preset = new ChoiceBox(QStringLiteral("Preset"), bar);
    m_preset->setPlaceholderText(WindowTexts::presetPlaceholder);
    m_preset->setToolTip(WindowTexts::presetHelp);
    m_preset->setAccessibleDescription(WindowTexts::presetHelp);
    m_preset->setMinimumContentsLength(28);
    label->setBuddy(m_preset);
    layout->addWidget(label);
    layout->addWidget(m_preset);
    layout->addStretch(1);

    connect(m_preset, &ChoiceBox::picked, this, [this](int index) {
        const QList<AnyPreset>& presets = m_model->presetStore()->allPresets();
        if (index >= 0 && index < presets.size())
            m_model->setSelectedAnyPreset(presets.at(index));
    });
    connect(m_model->presetStore(), &PresetStore::allPresetsChanged, this,
            &ContentView::refreshPresets);
    connect(m_model, &ContentViewModel::selectedAnyPresetChanged, this,
            &ContentView::refreshPresets);
    return bar;
}

QWidget* ContentView::buildSettingsColumn()
{
    m_settingsScroll = new QScrollArea(this);
    m_settingsScroll->setWidgetResizable(true);
    m_settingsScroll->setFrameShape(QFrame::NoFrame);
    m_settingsScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_settingsScroll->setMinimumWidth(520);

    auto* column = new QWidget;
    auto* layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 8, 0);
    layout->setSpacing(16);

    auto* formatRow = new QHBoxLayout;
    formatRow->setSpacing(8);
    auto* formatLabel = new QLabel(WindowTexts::formatLabel, column);
    QFont bold = formatLabel->font();
    bold.setBold(true);
    formatLabel->setFont(bold);
    m_format = new ChoiceBox(WindowTexts::formatLabel, column);
    m_format->setToolTip(WindowTexts::formatHelp);
    m_format->setAccessibleDescription(WindowTexts::formatHelp);
    QStringList formatLabels;
    for (const OutputFormat& format : allOutputFormats())
        formatLabels.append(displayName(format));
    m_format->setChoices(formatLabels, -1);
    formatLabel->setBuddy(m_format);
    formatRow->addWidget(formatLabel);
    formatRow->addWidget(m_format);
    formatRow->addStretch(1);
    layout->addLayout(formatRow);
    connect(m_format, &ChoiceBox::picked, this, [this](int index) {
        if (index >= 0 && index < int(allOutputFormats().size()))
            m_model->setSelectedOutputFormat(allOutputFormats()[std::size_t(index)]);
    });

    m_videoSettings = new VideoSettingsView(m_model, column);
    m_audioSettings = new AudioSettingsView(m_model, column);
    m_levelProcessing = new LevelProcessingView(m_model, column);
    layout->addWidget(m_videoSettings);
    layout->addWidget(m_audioSettings);
    layout->addWidget(m_levelProcessing);

    auto* lowerRow = new QHBoxLayout;
    lowerRow->setSpacing(16);
    m_options = new OptionsView(m_model, column);
    m_output = new OutputView(m_model, column);
    lowerRow->addWidget(m_options, 2);
    lowerRow->addWidget(m_output, 3);
    layout->addLayout(lowerRow);
    layout->addStretch(1);

    connect(m_model, &ContentViewModel::controlsChanged, this, &ContentView::refreshFormat);
    m_settingsScroll->setWidget(column);
    return m_settingsScroll;
}

QWidget* ContentView::buildBottomBar()
{
    auto* bar = new QWidget(this);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(16);
    m_progressArea = new ProgressAreaView(m_model->mediaConverter(), bar);
    m_convert = new QPushButton(bar);
    m_convert->setDefault(true);
    m_convert->setMinimumWidth(120);
    m_convert->setMinimumHeight(32);
    makeProminent(m_convert);
    layout->addWidget(m_progressArea, 1);
    layout->addWidget(m_convert);

    connect(m_convert, &QPushButton::clicked, m_model, &ContentViewModel::convertButtonPressed);
    connect(m_model, &ContentViewModel::convertButtonChanged, this,
            &ContentView::refreshConvertButton);
    connect(m_model, &ContentViewModel::listedFilesChanged, this,
            &ContentView::refreshConvertButton);
    connect(m_model->mediaConverter(), &MediaConverter::isConvertingChanged, this,
            &ContentView::refreshConvertButton);
    return bar;
}

void ContentView::refreshPresets()
{
    const QList<AnyPreset>& presets = m_model->presetStore()->allPresets();
    const std::optional<AnyPreset> selected = m_model->selectedAnyPreset();
    QStringList names;
    int current = -1;
    for (int index = 0; index < presets.size(); ++index) {
        names.append(presets.at(index).name());
        if (selected && presets.at(index).id() == selected->id())
            current = index;
    }
    m_preset->setChoices(names, current);
}

void ContentView::refreshFormat()
{
    const OutputFormat format = m_model->selectedOutputFormat();
    int current = -1;
    for (std::size_t index = 0; index < allOutputFormats().size(); ++index) {
        if (allOutputFormats()[index] == format)
            current = int(index);
    }
    m_format->showChoice(current);
    const bool video = format.kind == OutputFormat::Kind::video;
    m_videoSettings->setVisible(video);
    m_audioSettings->setVisible(!video);
    m_levelProcessing->setVisible(
        ConversionControls::showsAudioRows(format, m_model->audioHandlingMode()));
}

void ContentView::refreshConvertButton()
{
    m_convert->setText(m_model->convertButtonTitle());
    m_convert->setToolTip(m_model->convertButtonHelp());
    m_convert->setAccessibleDescription(m_model->convertButtonHelp());
    m_convert->setEnabled(m_model->convertButtonEnabled());
}

void ContentView::showOpenPanel()
{
    if (m_openPanel) {
        m_openPanel->raise();
        return;
    }
    auto* panel = new QFileDialog(window(), QStringLiteral("Add Files"), QDir::homePath());
    m_openPanel = panel;
    panel->setObjectName(QStringLiteral("openPanel"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setOption(QFileDialog::DontUseNativeDialog);
    panel->setFileMode(QFileDialog::ExistingFiles);
    panel->setNameFilters({QStringLiteral("Audio and video files (%1)")
                               .arg(FileListRules::openPanelPatterns().join(QLatin1Char(' '))),
                           QStringLiteral("All files (*)")});
    QPointer<ContentViewModel> model(m_model);
    connect(panel, &QFileDialog::filesSelected, m_model, [model](const QStringList& files) {
        QStringList paths;
        for (const QString& file : files)
            paths.append(QDir::cleanPath(file));
        if (model)
            model->addFiles(paths);
    });
    panel->open();
}

void ContentView::showAlert()
{
    if (!m_model->showingAlert() || m_alert)
        return;
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Ondrilet"),
                                m_model->alertMessage(), QMessageBox::Ok, window());
    m_alert = box;
    box->setObjectName(QStringLiteral("alert"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->button(QMessageBox::Ok)->setText(WindowTexts::alertOkButton);
    QPointer<ContentViewModel> model(m_model);
    connect(box, &QMessageBox::finished, this, [model] {
        if (model)
            model->dismissAlert();
    });
    box->open();
}

void ContentView::showFileAlert()
{
    if (!m_model->showingFileAlert() || m_fileAlert)
        return;
    auto* box = new QMessageBox(QMessageBox::Information, m_model->fileAlertTitle(),
                                m_model->fileAlertTitle(), QMessageBox::Ok, window());
    m_fileAlert = box;
    box->setObjectName(QStringLiteral("fileAlert"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setInformativeText(m_model->fileAlertText());
    box->button(QMessageBox::Ok)->setText(WindowTexts::alertOkButton);
    QPointer<ContentViewModel> model(m_model);
    connect(box, &QMessageBox::finished, this, [this, model] {
        // The closing box is still alive here: let go of it first, so that the next alert in
        // line, which the model announces at once, gets a box of its own.
        m_fileAlert = nullptr;
        if (model)
            model->dismissFileAlert();
    });
    box->open();
}

void ContentView::showOverwriteAlert()
{
    if (!m_model->showOverwriteWarning() || m_overwriteAlert)
        return;
    const QuestionBox::Parts question =
        QuestionBox::make(window(), QStringLiteral("overwriteAlert"),
                          WindowTexts::overwriteAlertTitle, WindowTexts::overwriteAlertText,
                          WindowTexts::overwriteAlertCancel, WindowTexts::overwriteAlertConfirm);
    m_overwriteAlert = question.box;
    QPointer<ContentViewModel> model(m_model);
    connect(question.cancel, &QPushButton::clicked, m_model, [model] {
        if (model)
            model->cancelOverwrite();
    });
    connect(question.confirm, &QPushButton::clicked, m_model, [model] {
        if (model)
            model->confirmOverwrite();
    });
    question.box->open();
}

} // namespace Ondrilet
