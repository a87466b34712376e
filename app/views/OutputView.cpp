// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/OutputView.h"

#include "app/views/AppearancePalette.h"
#include "app/views/ElidedLabel.h"
#include "app/views/SymbolIcon.h"
#include "app/window/ContentViewModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "app/window/WindowTexts.h"

#include <QDir>
#include <QFileDialog>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace Ondrilet {

namespace {

// The home folder as "~", as people read paths.
QString readablePath(const QString& path)
{
    const QString home = QDir::homePath();
    if (path == home)
        return QStringLiteral("~");
    if (path.startsWith(home + QLatin1Char('/')))
        return QStringLiteral("~") + path.mid(home.size());
    return path;
}

} // namespace

OutputView::OutputView(ContentViewModel* model, QWidget* parent)
    : SectionView(QStringLiteral("Output"), parent)
    , m_model(model)
{
    auto* directoryRow = new QHBoxLayout;
    directoryRow->setSpacing(8);
    auto* folderIcon = new QLabel(this);
    folderIcon->setPixmap(
        SymbolIcon::icon(QStringLiteral("folder"), AppearancePalette::secondaryText(palette()))
            .pixmap(QSize(18, 18)));
    m_directory = new ElidedLabel(this, Qt::ElideMiddle);
    m_change = new QPushButton(WindowTexts::changeDirectoryButton, this);
    m_change->setAccessibleName(QStringLiteral("Change output directory"));
    directoryRow->addWidget(folderIcon);
    directoryRow->addWidget(m_directory, 1);
    directoryRow->addWidget(m_change);
    cardLayout()->addLayout(directoryRow);

    auto* previewHeading = new QLabel(WindowTexts::outputPreviewHeading, this);
    QFont headingFont = previewHeading->font();
    headingFont.setBold(true);
    previewHeading->setFont(headingFont);
    m_preview = new QLabel(this);
    m_preview->setWordWrap(true);
    m_preview->setTextFormat(Qt::PlainText);
    m_preview->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_preview->setAccessibleName(WindowTexts::outputPreviewHeading);
    QPalette previewPalette = m_preview->palette();
    previewPalette.setColor(QPalette::WindowText, AppearancePalette::secondaryText(palette()));
    m_preview->setPalette(previewPalette);
    cardLayout()->addSpacing(4);
    cardLayout()->addWidget(previewHeading);
    cardLayout()->addWidget(m_preview);

    OutputDirectoryModel* directory = model->outputDirectoryModel();
    connect(m_change, &QPushButton::clicked, directory,
            &OutputDirectoryModel::chooseOutputDirectory);
    connect(directory, &OutputDirectoryModel::showingDirectoryPickerChanged, this,
            [this](bool showing) {
                if (showing)
                    showDirectoryPanel();
            });
    connect(directory, &OutputDirectoryModel::outputDirectoryChanged, this, &OutputView::refresh);
    connect(model, &ContentViewModel::controlsChanged, this, &OutputView::refresh);
    refresh();
}

void OutputView::refresh()
{
    const QString directory = m_model->outputDirectoryModel()->outputDirectory();
    m_directory->setFullText(readablePath(directory));
    m_directory->setToolTip(directory);
    m_preview->setText(m_model->outputPreview());
}

void OutputView::showDirectoryPanel()
{
    if (m_panel)
        return;
    auto* panel = new QFileDialog(window(), WindowTexts::directoryPanelTitle,
                                  OutputDirectoryModel::downloadsDirectory());
    m_panel = panel;
    panel->setObjectName(QStringLiteral("directoryPanel"));
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setOption(QFileDialog::DontUseNativeDialog);
    panel->setFileMode(QFileDialog::Directory);
    panel->setOption(QFileDialog::ShowDirsOnly);
    panel->setLabelText(QFileDialog::Accept, WindowTexts::directoryPanelPrompt);
    if (auto* grid = qobject_cast<QGridLayout*>(panel->layout())) {
        auto* message = new QLabel(WindowTexts::directoryPanelMessage, panel);
        message->setWordWrap(true);
        grid->addWidget(message, grid->rowCount(), 0, 1, grid->columnCount());
    }
    OutputDirectoryModel* directory = m_model->outputDirectoryModel();
    QPointer<OutputDirectoryModel> target(directory);
    connect(panel, &QFileDialog::finished, directory, [panel, target](int result) {
        if (!target)
            return;
        const QStringList chosen = panel->selectedFiles();
        target->setShowingDirectoryPicker(false);
        if (result == QDialog::Accepted && !chosen.isEmpty())
            target->directoryPanelFinished(QDir::cleanPath(chosen.constFirst()));
        else
            target->directoryPanelFinished(std::nullopt);
    });
    panel->open();
}

} // namespace Ondrilet
