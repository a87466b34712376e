// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/FileListView.h"

#include "app/views/AppearancePalette.h"
#include "app/views/AutomatorFileRowView.h"
#include "app/views/SymbolIcon.h"
#include "app/window/ContentViewModel.h"
#include "app/window/FileListModel.h"

#include <QDragEnterEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace Ondrilet {

namespace {

// The list's frame: the base colour in a rounded outline, lit up while files are dragged over.
class ListFrame : public QFrame
{
public:
    explicit ListFrame(QWidget* parent)
        : QFrame(parent)
    {}

    void setTargeted(bool targeted)
    {
        m_targeted = targeted;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPalette& colours = palette();
        QPainterPath outline;
        outline.addRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 8, 8);
        painter.fillPath(outline, colours.color(QPalette::Base));
        if (m_targeted) {
            QColor tint = colours.color(QPalette::Highlight);
            tint.setAlphaF(0.08);
            painter.fillPath(outline, tint);
            QPen pen(colours.color(QPalette::Highlight), 2, Qt::DashLine);
            painter.setPen(pen);
        } else {
            const bool dark = AppearancePalette::isDark(colours);
            painter.setPen(QPen(dark ? colours.color(QPalette::Window).lighter(150)
                                     : colours.color(QPalette::Mid),
                                1));
        }
        painter.drawPath(outline);
    }

private:
    bool m_targeted = false;
};

QString countText(qsizetype count)
{
    if (count == 1)
        return QStringLiteral("1 file");
    return QStringLiteral("%1 files").arg(count);
}

} // namespace

FileListView::FileListView(ContentViewModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(QStringLiteral("Files"));

    auto* title = new QLabel(QStringLiteral("Files"), this);
    QFont titleFont = title->font();
    titleFont.setBold(true);
    title->setFont(titleFont);

    m_addButton =
        new QPushButton(SymbolIcon::icon(QStringLiteral("plus")), QStringLiteral("Add…"), this);
    m_addButton->setAccessibleName(QStringLiteral("Add files"));
    m_addButton->setToolTip(QStringLiteral("Add audio or video files (Ctrl+O)"));
    connect(m_addButton, &QPushButton::clicked, this, &FileListView::addRequested);

    auto* header = new QHBoxLayout;
    header->setSpacing(8);
    header->addWidget(title);
    header->addStretch(1);
    header->addWidget(m_addButton);

    auto* frame = new ListFrame(this);
    m_frame = frame;
    m_scroll = new QScrollArea(frame);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->viewport()->setAutoFillBackground(false);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_rowsHost = new QWidget;
    m_rowsHost->setAutoFillBackground(false);
    m_rowsLayout = new QVBoxLayout(m_rowsHost);
    m_rowsLayout->setContentsMargins(4, 4, 4, 4);
    m_rowsLayout->setSpacing(0);
    m_rowsLayout->addStretch(1);
    m_scroll->setWidget(m_rowsHost);

    m_emptyState = new QWidget(frame);
    auto* emptyIcon = new QLabel(m_emptyState);
    emptyIcon->setAlignment(Qt::AlignCenter);
    emptyIcon->setPixmap(SymbolIcon::icon(QStringLiteral("tray.and.arrow.down"),
                                          AppearancePalette::secondaryText(palette()))
                             .pixmap(QSize(40, 40)));
    auto* emptyText = new QLabel(QStringLiteral("Drop audio or video files here"), m_emptyState);
    emptyText->setAlignment(Qt::AlignCenter);
    emptyText->setWordWrap(true);
    auto* emptyHint = new QLabel(QStringLiteral("or choose Add…"), m_emptyState);
    emptyHint->setAlignment(Qt::AlignCenter);
    QPalette hintPalette = emptyHint->palette();
    hintPalette.setColor(QPalette::WindowText, AppearancePalette::secondaryText(palette()));
    emptyHint->setPalette(hintPalette);
    emptyText->setPalette(hintPalette);
    auto* emptyLayout = new QVBoxLayout(m_emptyState);
    emptyLayout->addStretch(1);
    emptyLayout->addWidget(emptyIcon);
    emptyLayout->addWidget(emptyText);
    emptyLayout->addWidget(emptyHint);
    emptyLayout->addStretch(1);

    auto* frameLayout = new QVBoxLayout(frame);
    frameLayout->setContentsMargins(2, 2, 2, 2);
    frameLayout->addWidget(m_scroll);
    frameLayout->addWidget(m_emptyState);

    m_countLabel = new QLabel(this);
    QPalette countPalette = m_countLabel->palette();
    countPalette.setColor(QPalette::WindowText, AppearancePalette::secondaryText(palette()));
    m_countLabel->setPalette(countPalette);
    m_clearButton = new QPushButton(QStringLiteral("Clear"), this);
    m_clearButton->setAccessibleName(QStringLiteral("Clear the file list"));
    connect(m_clearButton, &QPushButton::clicked, m_model, &ContentViewModel::clearFiles);

    auto* footer = new QHBoxLayout;
    footer->addWidget(m_countLabel);
    footer->addStretch(1);
    footer->addWidget(m_clearButton);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    layout->addLayout(header);
    layout->addWidget(frame, 1);
    layout->addLayout(footer);

    connect(m_model->fileList(), &FileListModel::listedFilesChanged, this,
            &FileListView::rebuildRows);
    connect(m_model, &ContentViewModel::isDragOverChanged, this,
            [frame](bool over) { frame->setTargeted(over); });
    rebuildRows(m_model->listedFiles());
}

QList<qint64> FileListView::selectedIndices() const
{
    QList<qint64> indices(m_selected.begin(), m_selected.end());
    std::sort(indices.begin(), indices.end());
    return indices;
}

void FileListView::removeSelected()
{
    const QStringList files = m_model->listedFiles();
    QStringList chosen;
    for (const qint64 index : selectedIndices()) {
        if (index >= 0 && index < files.size())
            chosen.append(files.at(index));
    }
    m_selected.clear();
    for (const QString& file : std::as_const(chosen))
        m_model->removeFile(file);
}

void FileListView::rebuildRows(const QStringList& files)
{
    for (AutomatorFileRowView* row : std::as_const(m_rows)) {
        row->hide();
        row->deleteLater();
    }
    m_rows.clear();
    const qsizetype count = files.size();
    for (qsizetype index = 0; index < count; ++index) {
        const QString file = files.at(index);
        auto* row = new AutomatorFileRowView(
            file, index, index == count - 1, [this, file] { m_model->removeFile(file); },
            [this](const QString& draggedText, qint64 destination) {
                m_model->handleRowDrop(draggedText, destination);
            },
            m_rowsHost);
        connect(row, &AutomatorFileRowView::clicked, this,
                [this, index](Qt::KeyboardModifiers modifiers) { selectRow(index, modifiers); });
        m_rowsLayout->insertWidget(int(index), row);
        m_rows.append(row);
    }
    // Indices name other files after any change of the list.
    m_selected.clear();
    m_current = std::min<qint64>(m_current, count - 1);
    refreshSelection();

    m_scroll->setVisible(count > 0);
    m_emptyState->setVisible(count == 0);
    m_countLabel->setText(countText(count));
    m_clearButton->setEnabled(count > 0);
}

void FileListView::selectRow(qint64 index, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ControlModifier) {
        if (m_selected.contains(index))
            m_selected.remove(index);
        else
            m_selected.insert(index);
    } else {
        m_selected = {index};
    }
    m_current = index;
    setFocus(Qt::MouseFocusReason);
    refreshSelection();
}

void FileListView::moveCurrent(int step)
{
    if (m_rows.isEmpty())
        return;
    const qint64 last = m_rows.size() - 1;
    m_current =
        m_current < 0 ? (step > 0 ? 0 : last) : std::clamp<qint64>(m_current + step, 0, last);
    m_selected = {m_current};
    refreshSelection();
    m_scroll->ensureWidgetVisible(m_rows.at(m_current));
}

void FileListView::refreshSelection()
{
    for (AutomatorFileRowView* row : std::as_const(m_rows))
        row->setSelected(m_selected.contains(row->index()));
}

void FileListView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (!m_selected.isEmpty()) {
            removeSelected();
            event->accept();
            return;
        }
        break;
    case Qt::Key_Up:
        moveCurrent(-1);
        event->accept();
        return;
    case Qt::Key_Down:
        moveCurrent(1);
        event->accept();
        return;
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

void FileListView::dragEnterEvent(QDragEnterEvent* event)
{
    if (!event->mimeData()->hasUrls()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_model->setIsDragOver(true);
}

void FileListView::dragMoveEvent(QDragMoveEvent* event)
{
    if (!event->mimeData()->hasUrls()) {
        event->ignore();
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void FileListView::dragLeaveEvent(QDragLeaveEvent* event)
{
    m_model->setIsDragOver(false);
    QWidget::dragLeaveEvent(event);
}

void FileListView::dropEvent(QDropEvent* event)
{
    if (!event->mimeData()->hasUrls()) {
        event->ignore();
        m_model->setIsDragOver(false);
        return;
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
    m_model->handleDrop(event->mimeData()->urls());
}

} // namespace Ondrilet
