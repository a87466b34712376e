// SPDX-License-Identifier: GPL-3.0-or-later
// "Batch Conversion Progress": the batch's time remaining, count and percentage, its performance
// metrics, Pause / Resume / Show Details, and one row per file; a row's click opens its details.
// It reads the BatchProgressManager and calls only its pause and resume. GUI thread only.
#pragma once

#include "app/batch/FileConversionProgress.h"

#include <QPointer>
#include <QWidget>

#include <optional>

class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;
class QVBoxLayout;

namespace Ondrilet {

class BatchProgressManager;
class FileDetailView;
class FileProgressRow;
class MetricCard;

class BatchProgressView : public QWidget
{
    Q_OBJECT

public:
    explicit BatchProgressView(BatchProgressManager* manager, QWidget* parent = nullptr);

    QLabel* timeRemainingLabel() const { return m_timeRemaining; }
    QLabel* countLabel() const { return m_count; }
    QLabel* percentLabel() const { return m_percent; }
    QToolButton* metricsToggle() const { return m_metricsToggle; }
    QWidget* metricsSection() const { return m_metrics; }
    QList<MetricCard*> metricCards() const { return m_cards; }
    QPushButton* pauseButton() const { return m_pause; }
    QPushButton* resumeButton() const { return m_resume; }
    QPushButton* detailsButton() const { return m_details; }
    QList<FileProgressRow*> rows() const { return m_rows; }
    bool showingDetails() const { return m_showingDetails; }
    std::optional<FileConversionProgress> selectedFile() const { return m_selectedFile; }
    // The details window of the selected file, while it is open.
    FileDetailView* fileDetailView() const;

    void selectFile(const FileConversionProgress& file);

private:
    void refreshStats();
    void refreshFiles();
    void refreshFlags();

    BatchProgressManager* m_manager = nullptr;
    QLabel* m_timeRemaining = nullptr;
    QLabel* m_count = nullptr;
    QLabel* m_percent = nullptr;
    QProgressBar* m_bar = nullptr;
    QToolButton* m_metricsToggle = nullptr;
    QWidget* m_metrics = nullptr;
    QList<MetricCard*> m_cards;
    QPushButton* m_pause = nullptr;
    QPushButton* m_resume = nullptr;
    QPushButton* m_details = nullptr;
    QWidget* m_fileList = nullptr;
    QVBoxLayout* m_fileLayout = nullptr;
    QList<FileProgressRow*> m_rows;
    bool m_showingDetails = true;
    std::optional<FileConversionProgress> m_selectedFile;
    QPointer<FileDetailView> m_detailView;
};

} // namespace Ondrilet
