// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/FileDetailView.h"

#include "app/batch/ProgressTexts.h"
#include "app/views/SecondaryLabel.h"

#include <QFormLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace Ondrilet {

QList<FileDetailView::Row> FileDetailView::rows(const FileConversionProgress& file)
{
    QList<Row> rows{
        {QStringLiteral("File Name"), file.fileName()},
        {QStringLiteral("Status"), file.status.displayText()},
        {QStringLiteral("Progress"), ProgressTexts::percentText(file.progress)},
        {QStringLiteral("Input Size"), ProgressTexts::sizeText(file.inputSize())},
        {QStringLiteral("Output Size"), ProgressTexts::sizeText(file.outputSize)},
        {QStringLiteral("Processing Speed"), ProgressTexts::speedText(file.processingSpeed)},
    };
    if (const std::optional<QString> elapsed = ProgressTexts::durationOrNothing(file.elapsedTime()))
        rows.append({QStringLiteral("Elapsed Time"), *elapsed});
    if (const std::optional<QString> left = ProgressTexts::durationOrNothing(file.timeRemaining))
        rows.append({QStringLiteral("Time Remaining"), *left});
    return rows;
}

FileDetailView::FileDetailView(const FileConversionProgress& fileProgress, QWidget* parent)
    : QWidget(parent)
    , m_rows(rows(fileProgress))
{
    setAccessibleName(QStringLiteral("File Details"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 20, 24, 24);
    layout->setSpacing(12);
    auto* heading = new QLabel(QStringLiteral("File Details"), this);
    QFont headingFont = heading->font();
    headingFont.setBold(true);
    headingFont.setPointSizeF(headingFont.pointSizeF() * 1.2);
    heading->setFont(headingFont);
    layout->addWidget(heading);
    auto* form = new QFormLayout;
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->setHorizontalSpacing(16);
    form->setVerticalSpacing(6);
    for (const Row& row : m_rows) {
        auto* value = new QLabel(row.value, this);
        value->setTextInteractionFlags(Qt::TextSelectableByMouse);
        value->setWordWrap(true);
        value->setAccessibleName(row.label);
        form->addRow(new SecondaryLabel(row.label, this), value);
    }
    layout->addLayout(form);
    layout->addStretch(1);
}

} // namespace Ondrilet
