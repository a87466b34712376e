// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/BatchProgressView.h"

#include "app/batch/BatchProgressManager.h"
#include "app/batch/ProgressTexts.h"
#include "app/views/FileDetailView.h"
#include "app/views/FileProgressRow.h"
#include "app/views/MetricCard.h"
#include "app/views/SecondaryLabel.h"
#include "app/views/SymbolIcon.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace Ondrilet {

namespace {

constexpr int barMaximum = 1000;

QLabel* boldLabel(const QString& text, QWidget* parent, qreal scale = 1.0)
{
    auto* label = new QLabel(text, parent);
    QFont font = label->font();
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * scale);
    label->setFont(font);
    return label;
}

} // namespace

BatchProgressView::BatchProgressView(BatchProgressManager* manager, QWidget* parent)
    : QWidget(parent)
    , m_manager(manager)
{
    setAccessibleName(QStringLiteral("Batch Conversion Progress"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 16, 16, 16);
    layout->setSpacing(12);

    auto* header = new QHBoxLayout;
    header->addWidget(boldLabel(QStringLiteral("Batch Conversion Progress"), this, 1.15), 1);
    m_metricsToggle = new QToolButton(this);
    m_metricsToggle->setIcon(SymbolIcon::icon(QStringLiteral("chart.line.uptrend.xyaxis")));
    m_metricsToggle->setCheckable(true);
    m_metricsToggle->setAutoRaise(true);
    m_metricsToggle->setToolTip(QStringLiteral("Toggle Performance Metrics"));
    m_metricsToggle->setAccessibleName(QStringLiteral("Toggle Performance Metrics"));
    header->addWidget(m_metricsToggle);
    layout->addLayout(header);

    m_timeRemaining = new SecondaryLabel(QString(), this);
    layout->addWidget(m_timeRemaining);
    m_bar = new QProgressBar(this);
    m_bar->setRange(0, barMaximum);
    m_bar->setTextVisible(false);
    m_bar->setFixedHeight(8);
    m_bar->setAccessibleName(QStringLiteral("Batch progress"));
    layout->addWidget(m_bar);
    auto* countRow = new QHBoxLayout;
    m_count = new QLabel(this);
    m_percent = new QLabel(this);
    m_percent->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    countRow->addWidget(m_count, 1);
    countRow->addWidget(m_percent);
    layout->addLayout(countRow);

    m_metrics = new QWidget(this);
    auto* metricsLayout = new QVBoxLayout(m_metrics);
    metricsLayout->setContentsMargins(0, 0, 0, 0);
    metricsLayout->setSpacing(8);
    metricsLayout->addWidget(boldLabel(QStringLiteral("Performance Metrics"), m_metrics));
    auto* cards = new QHBoxLayout;
    cards->setSpacing(8);
    m_cards = {
        new MetricCard(QStringLiteral("Processing Speed"), QStringLiteral("speedometer"),
                       m_metrics),
        new MetricCard(QStringLiteral("Memory Usage"), QStringLiteral("memorychip"), m_metrics),
        new MetricCard(QStringLiteral("Compression Ratio"), QStringLiteral("arrow.down.circle"),
                       m_metrics),
    };
    for (MetricCard* card : m_cards)
        cards->addWidget(card, 1);
    metricsLayout->addLayout(cards);
    layout->addWidget(m_metrics);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    m_pause = new QPushButton(QStringLiteral("Pause"), this);
    m_resume = new QPushButton(QStringLiteral("Resume"), this);
    m_details = new QPushButton(QStringLiteral("Show Details"), this);
    m_details->setCheckable(true);
    m_details->setChecked(m_showingDetails);
    buttons->addWidget(m_pause);
    buttons->addWidget(m_resume);
    buttons->addStretch(1);
    buttons->addWidget(m_details);
    layout->addLayout(buttons);

    m_fileList = new QWidget(this);
    m_fileLayout = new QVBoxLayout(m_fileList);
    m_fileLayout->setContentsMargins(0, 0, 0, 0);
    m_fileLayout->setSpacing(2);
    layout->addWidget(m_fileList);
    layout->addStretch(1);

    connect(m_metricsToggle, &QToolButton::toggled, manager,
            &BatchProgressManager::setShowPerformanceMetrics);
    connect(m_pause, &QPushButton::clicked, manager, &BatchProgressManager::pauseBatch);
    connect(m_resume, &QPushButton::clicked, manager, &BatchProgressManager::resumeBatch);
    connect(m_details, &QPushButton::toggled, this, [this](bool on) {
        m_showingDetails = on;
        m_fileList->setVisible(on);
    });
    connect(manager, &BatchProgressManager::batchStatsChanged, this,
            &BatchProgressView::refreshStats);
    connect(manager, &BatchProgressManager::memoryStatsChanged, this,
            &BatchProgressView::refreshStats);
    connect(manager, &BatchProgressManager::fileProgressesChanged, this,
            &BatchProgressView::refreshFiles);
    for (auto signal :
         {&BatchProgressManager::isPausedChanged, &BatchProgressManager::canPauseChanged,
          &BatchProgressManager::canResumeChanged,
          &BatchProgressManager::showPerformanceMetricsChanged})
        connect(manager, signal, this, &BatchProgressView::refreshFlags);
    refreshStats();
    refreshFiles();
    refreshFlags();
}

void BatchProgressView::refreshStats()
{
    const BatchConversionStats stats = m_manager->batchStats();
    const std::optional<QString> remaining =
        ProgressTexts::timeRemainingLine(stats.overallTimeRemaining);
    m_timeRemaining->setVisible(remaining.has_value());
    m_timeRemaining->setText(remaining.value_or(QString()));
    m_count->setText(ProgressTexts::filesCompletedText(stats.completedFiles, stats.totalFiles));
    m_percent->setText(ProgressTexts::percentText(stats.totalProgress));
    m_bar->setValue(int(std::lround(std::clamp(stats.totalProgress, 0.0, 1.0) * barMaximum)));
    // The same figures as the manager's texts, written without regard to the C locale.
    m_cards[0]->setValue(ProgressTexts::speedText(stats.averageProcessingSpeed));
    m_cards[1]->setValue(ProgressTexts::sizeText(m_manager->memoryStats().currentUsage));
    m_cards[2]->setValue(ProgressTexts::ratioText(m_manager->compressionRatio()));
}

void BatchProgressView::refreshFiles()
{
    const QList<FileConversionProgress> files = m_manager->fileProgresses();
    while (m_rows.size() > files.size())
        delete m_rows.takeLast();
    for (qsizetype i = 0; i < files.size(); ++i) {
        if (i < m_rows.size()) {
            m_rows[i]->setFileProgress(files[i]);
            continue;
        }
        auto* row = new FileProgressRow(files[i], m_fileList);
        connect(row, &FileProgressRow::clicked, this, &BatchProgressView::selectFile);
        m_fileLayout->addWidget(row);
        m_rows.append(row);
    }
    refreshStats();
}

void BatchProgressView::refreshFlags()
{
    m_metricsToggle->setChecked(m_manager->showPerformanceMetrics());
    m_metrics->setVisible(m_manager->showPerformanceMetrics());
    m_pause->setEnabled(m_manager->canPause());
    m_resume->setEnabled(m_manager->canResume());
}

FileDetailView* BatchProgressView::fileDetailView() const
{
    return m_detailView.data();
}

void BatchProgressView::selectFile(const FileConversionProgress& file)
{
    m_selectedFile = file;
    if (m_detailView)
        m_detailView->close();
    auto* detail = new FileDetailView(file, this);
    detail->setWindowFlag(Qt::Window);
    detail->setWindowTitle(QStringLiteral("File Details"));
    detail->setAttribute(Qt::WA_DeleteOnClose);
    detail->resize(420, detail->sizeHint().height());
    m_detailView = detail;
    detail->show();
}

} // namespace Ondrilet
