// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/views/FileListView.h"

#include "app/views/AppearancePalette.h"
#include "app/views/AutomatorFileRowView.h"
#include "app/views/SymbolIcon.h"
#include "app/window/ContentViewModel.h"
#include "app/window/FileListModel.h"

#include <QCoreApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListView>
#include <QMimeData>
#include <QPainter>
#include <QPainterPath>
#include <QPersistentModelIndex>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <memory>

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

// A drag from a file manager, over any part of the list: the list lights up.
bool enterWithFiles(ContentViewModel* model, QDragMoveEvent* event)
{
    if (!event->mimeData()->hasUrls())
        return false;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    if (event->type() == QEvent::DragEnter)
        model->setIsDragOver(true);
    return true;
}

bool dropFiles(ContentViewModel* model, QDropEvent* event)
{
    if (!event->mimeData()->hasUrls())
        return false;
    event->setDropAction(Qt::CopyAction);
    event->accept();
    model->handleDrop(event->mimeData()->urls());
    return true;
}

// The rows: a list view with one painted row per file. A row dragged onto another asks the
// model to move it; a click on a row's remove button removes its file; Delete goes to the list.
class FileRows : public QListView
{
public:
    FileRows(ContentViewModel* model, AutomatorFileRowView* rowDelegate, QWidget* parent)
        : QListView(parent)
        , m_model(model)
        , m_delegate(rowDelegate)
    {
        setModel(model->fileList());
        setItemDelegate(rowDelegate);
        setUniformItemSizes(true);
        // Rows span the viewport, also once a scroll bar takes some of it.
        setResizeMode(QListView::Adjust);
        setSelectionMode(QAbstractItemView::ExtendedSelection);
        setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFrameShape(QFrame::NoFrame);
        setDragEnabled(true);
        setAcceptDrops(true);
        viewport()->setAcceptDrops(true);
        setDropIndicatorShown(false);
        setAutoFillBackground(false);
        viewport()->setAutoFillBackground(false);
        viewport()->setAttribute(Qt::WA_Hover);
        setMouseTracking(true);
        setViewportMargins(4, 4, 4, 4);
        setAccessibleName(QStringLiteral("Files"));
    }

    std::function<void()> onRemoveSelected;

protected:
    void mousePressEvent(QMouseEvent* event) override
    {
        const QPoint position = event->position().toPoint();
        m_pressPosition = position;
        const QModelIndex index = indexAt(position);
        m_pressedRemove = QPersistentModelIndex();
        if (event->button() == Qt::LeftButton && index.isValid() &&
            AutomatorFileRowView::removeButtonRect(visualRect(index)).contains(position)) {
            m_pressedRemove = index;
            event->accept();
            return;
        }
        QListView::mousePressEvent(event);
    }

    void mouseMoveEvent(QMouseEvent* event) override
    {
        if (m_pressedRemove.isValid()) {
            event->accept();
            return;
        }
        QListView::mouseMoveEvent(event);
    }

    void mouseReleaseEvent(QMouseEvent* event) override
    {
        if (!m_pressedRemove.isValid()) {
            QListView::mouseReleaseEvent(event);
            return;
        }
        const QPersistentModelIndex pressed = m_pressedRemove;
        m_pressedRemove = QPersistentModelIndex();
        event->accept();
        if (event->button() == Qt::LeftButton &&
            AutomatorFileRowView::removeButtonRect(visualRect(pressed))
                .contains(event->position().toPoint()))
            m_model->removeFile(pressed.data(FileListModel::fileRole).toString());
    }

    bool viewportEvent(QEvent* event) override
    {
        // The remove button lights up under the pointer: its row is painted again as it moves.
        if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverLeave) {
            const QModelIndex under =
                event->type() == QEvent::HoverMove
                    ? indexAt(static_cast<QHoverEvent*>(event)->position().toPoint())
                    : QModelIndex();
            if (under.isValid())
                viewport()->update(visualRect(under));
        }
        return QListView::viewportEvent(event);
    }

    void keyPressEvent(QKeyEvent* event) override
    {
        if (event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace) {
            if (selectionModel()->hasSelection() && onRemoveSelected) {
                onRemoveSelected();
                event->accept();
                return;
            }
            event->ignore();
            return;
        }
        QListView::keyPressEvent(event);
    }

    void startDrag(Qt::DropActions) override
    {
        const QModelIndex dragged = indexAt(m_pressPosition);
        if (!dragged.isValid())
            return;
        std::unique_ptr<QMimeData> offered(model()->mimeData({dragged}));
        if (!offered)
            return;
        QPointer<FileRows> self(this);
        auto* drag = new QDrag(this);
        drag->setMimeData(offered.release());
        drag->setPixmap(rowPicture(dragged));
        drag->setHotSpot(m_pressPosition - visualRect(dragged).topLeft());
        m_delegate->setDraggedRow(dragged.row());
        viewport()->update();
        drag->exec(Qt::MoveAction);
        // The list may be gone once the drag is over.
        if (!self)
            return;
        m_delegate->setDraggedRow(-1);
        setDropTarget(QModelIndex());
    }

    void dragEnterEvent(QDragEnterEvent* event) override
    {
        if (enterWithFiles(m_model, event))
            return;
        if (!acceptsRow(event)) {
            event->ignore();
            return;
        }
        event->setDropAction(Qt::MoveAction);
        event->accept();
        setDropTarget(indexAt(event->position().toPoint()));
    }

    void dragMoveEvent(QDragMoveEvent* event) override
    {
        if (enterWithFiles(m_model, event))
            return;
        const QModelIndex target = indexAt(event->position().toPoint());
        if (!acceptsRow(event) || !target.isValid()) {
            setDropTarget(QModelIndex());
            event->ignore();
            return;
        }
        setDropTarget(target);
        event->setDropAction(Qt::MoveAction);
        event->accept();
    }

    void dragLeaveEvent(QDragLeaveEvent* event) override
    {
        setDropTarget(QModelIndex());
        m_model->setIsDragOver(false);
        event->accept();
    }

    void dropEvent(QDropEvent* event) override
    {
        setDropTarget(QModelIndex());
        if (dropFiles(m_model, event))
            return;
        const QModelIndex target = indexAt(event->position().toPoint());
        if (!acceptsRow(event) || !target.isValid()) {
            event->ignore();
            return;
        }
        event->setDropAction(Qt::MoveAction);
        event->accept();
        m_model->handleRowDrop(event->mimeData()->text(), target.row());
    }

private:
    bool acceptsRow(const QDropEvent* event) const
    {
        return model()->canDropMimeData(event->mimeData(), Qt::MoveAction, -1, -1, QModelIndex());
    }

    void setDropTarget(const QModelIndex& target)
    {
        const int row = target.isValid() ? target.row() : -1;
        if (row == m_delegate->dropTargetRow())
            return;
        m_delegate->setDropTargetRow(row);
        viewport()->update();
    }

    // What the pointer carries while a row is dragged: the row as it is painted.
    QPixmap rowPicture(const QModelIndex& index) const
    {
        QStyleOptionViewItem option;
        initViewItemOption(&option);
        const QRect rect = visualRect(index);
        option.rect = QRect(QPoint(0, 0), rect.size());
        const qreal ratio = devicePixelRatioF();
        QPixmap picture(rect.size() * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(palette().color(QPalette::Base));
        QPainter painter(&picture);
        m_delegate->paint(&painter, option, index);
        return picture;
    }

    ContentViewModel* m_model;
    AutomatorFileRowView* m_delegate;
    QPoint m_pressPosition;
    QPersistentModelIndex m_pressedRemove;
};

} // namespace

FileListView::FileListView(ContentViewModel* model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
{
    setAcceptDrops(true);
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
    m_rowDelegate = new AutomatorFileRowView(this);
    auto* rows = new FileRows(m_model, m_rowDelegate, frame);
    rows->onRemoveSelected = [this] { removeSelected(); };
    m_rows = rows;
    setFocusProxy(m_rows);

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
    frameLayout->addWidget(m_rows);
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

    // The rows follow the model on their own; only the count and the empty state are told here.
    connect(m_model->fileList(), &FileListModel::listedFilesChanged, this,
            &FileListView::refreshCount);
    connect(m_model, &ContentViewModel::isDragOverChanged, this,
            [frame](bool over) { frame->setTargeted(over); });
    refreshCount();
}

QList<qint64> FileListView::selectedIndices() const
{
    QList<qint64> indices;
    for (const QModelIndex& index : m_rows->selectionModel()->selectedRows())
        indices.append(index.row());
    std::sort(indices.begin(), indices.end());
    return indices;
}

void FileListView::removeSelected()
{
    QStringList chosen;
    for (const QModelIndex& index : m_rows->selectionModel()->selectedRows())
        chosen.append(index.data(FileListModel::fileRole).toString());
    m_rows->selectionModel()->clearSelection();
    for (const QString& file : std::as_const(chosen))
        m_model->removeFile(file);
}

void FileListView::refreshCount()
{
    const qsizetype count = m_model->fileList()->count();
    m_rows->setVisible(count > 0);
    m_emptyState->setVisible(count == 0);
    m_countLabel->setText(countText(count));
    m_clearButton->setEnabled(count > 0);
}

void FileListView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (m_rows->selectionModel()->hasSelection()) {
            removeSelected();
            event->accept();
            return;
        }
        break;
    case Qt::Key_Up:
    case Qt::Key_Down:
        QCoreApplication::sendEvent(m_rows, event);
        return;
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

void FileListView::dragEnterEvent(QDragEnterEvent* event)
{
    if (!enterWithFiles(m_model, event))
        event->ignore();
}

void FileListView::dragMoveEvent(QDragMoveEvent* event)
{
    if (!enterWithFiles(m_model, event))
        event->ignore();
}

void FileListView::dragLeaveEvent(QDragLeaveEvent* event)
{
    m_model->setIsDragOver(false);
    QWidget::dragLeaveEvent(event);
}

void FileListView::dropEvent(QDropEvent* event)
{
    if (dropFiles(m_model, event))
        return;
    event->ignore();
    m_model->setIsDragOver(false);
}

} // namespace Ondrilet
