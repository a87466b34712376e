// SPDX-License-Identifier: GPL-3.0-or-later
// The main window over its model under the offscreen platform: the open panel, a dropped list
// of files, row reordering, removal, clearing, the settings sections following the format and
// codec, the preview, the Convert button, the overwrite question, and the progress area during a
// real conversion. Writes screenshots of the window into the build folder.
#include "ConversionEngine/progress/EnhancedProgressTracker.h"
#include "app/metadata/MetadataEditorModel.h"
#include "app/presets/PresetStore.h"
#include "app/views/AppearancePalette.h"
#include "app/views/AudioSettingsRows.h"
#include "app/views/AudioSettingsView.h"
#include "app/views/AutomatorFileRowView.h"
#include "app/views/ChoiceBox.h"
#include "app/views/ContentView.h"
#include "app/views/ElidedLabel.h"
#include "app/views/FileListView.h"
#include "app/views/HeartbeatDot.h"
#include "app/views/LevelProcessingView.h"
#include "app/views/MainWindow.h"
#include "app/views/OptionsView.h"
#include "app/views/OutputView.h"
#include "app/views/ProgressAreaView.h"
#include "app/views/VideoSettingsView.h"
#include "app/window/ContentViewModel.h"
#include "app/window/FileListModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "app/window/WindowTexts.h"
#include "platform/foundation/Console.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"

#include <QCheckBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <memory>
#include <sys/stat.h>

using namespace Ondrilet;
using TestSupport::Fixtures;

namespace {

// One window with its own model and preset store, shown so that its first appearance ran.
struct Window
{
    PresetStore store;
    ContentViewModel model{&store};
    MainWindow window{&model};

    Window()
    {
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            qWarning("The main window was not exposed");
        // The first appearance hands pending files over on a later turn.
        QCoreApplication::processEvents();
    }

    ContentView* view() const { return window.contentView(); }
    FileListView* list() const { return view()->fileList(); }
    QListView* rows() const { return list()->rowsView(); }
    QAbstractItemModel* rowModel() const { return rows()->model(); }
    int rowCount() const { return rowModel()->rowCount(); }
    QModelIndex row(int index) const { return rowModel()->index(index, 0); }
    QString rowName(int index) const { return row(index).data(Qt::AccessibleTextRole).toString(); }
    // A row's place in the list's viewport, where the pointer reaches it.
    QRect rowRect(int index) const { return rows()->visualRect(row(index)); }
    std::unique_ptr<QMimeData> rowDrag(int index) const
    {
        return std::unique_ptr<QMimeData>(rowModel()->mimeData({row(index)}));
    }
};

int indexOfFormat(const QString& label)
{
    for (std::size_t index = 0; index < allOutputFormats().size(); ++index) {
        if (displayName(allOutputFormats()[index]) == label)
            return int(index);
    }
    return -1;
}

void pickFormat(Window& w, const QString& label)
{
    const int index = indexOfFormat(label);
    QVERIFY(index >= 0);
    w.view()->formatBox()->pick(index);
    QCOMPARE(w.view()->formatBox()->currentText(), label);
}

// A drag of `data` entered and dropped on `target` at `centre`, as a drag session delivers it.
bool dropOn(QWidget* target, QMimeData* data, QPointF centre)
{
    QDragEnterEvent enter(centre.toPoint(), Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!enter.isAccepted())
        return false;
    QDropEvent drop(centre, Qt::CopyAction | Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &drop);
    return drop.isAccepted();
}

// The file's inode: a file swapped into a name has a new one.
quint64 fileIdentity(const QString& path)
{
    struct stat status
    {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return 0;
    return quint64(status.st_ino);
}

bool shownIn(QWidget* widget, QWidget* ancestor)
{
    return widget->isVisibleTo(ancestor);
}

QString screenshotFolder()
{
    const QString folder = QCoreApplication::applicationDirPath() + QStringLiteral("/screenshots");
    QDir().mkpath(folder);
    return folder;
}

} // namespace

class ContentViewTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void addsFilesThroughTheOpenPanel();
    void addsDroppedFilesAndAlertsForRefusedOnes();
    void showsQueuedFileAlertsOneAfterTheOther();
    void listsAThousandDroppedFilesRowByRow();
    void reordersByDraggingARowOntoAnother();
    void removesRowsByButtonAndByDeleteKey();
    void clearsTheList();
    void formatAndCodecChangeTheSettingsSections();
    void levelModeShowsItsRows();
    void previewFollowsTheListAndSettings();
    void convertIsDisabledWithAnEmptyList();
    void overwriteQuestionCancelsOrOverwrites();
    void progressAreaFollowsARealConversion();
    void closingDuringAConversionAsksFirst();
    void nothingNeedsSidewaysScrolling();
    void screenshots();

private:
    QString tone(const QString& directory, const QString& name, double seconds = 1.0);

    QTemporaryDir m_dir;
};

void ContentViewTest::initTestCase()
{
    QVERIFY(m_dir.isValid());
    Platform::UserDefaults::setStandardFilePath(m_dir.filePath(QStringLiteral("prefs.conf")));
    AppearancePalette::apply(QStringLiteral("Light"));
}

void ContentViewTest::init()
{
    AppearancePalette::apply(QStringLiteral("Light"));
}

void ContentViewTest::cleanupTestCase()
{
    Platform::UserDefaults::setStandardFilePath(QString());
}

QString ContentViewTest::tone(const QString& directory, const QString& name, double seconds)
{
    QDir().mkpath(directory);
    return Fixtures::makeTone(directory, name, seconds, 48000, 2,
                              {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
}

void ContentViewTest::addsFilesThroughTheOpenPanel()
{
    const QString folder = m_dir.filePath(QStringLiteral("panel"));
    const QString first = tone(folder, QStringLiteral("first.wav"));
    const QString second = tone(folder, QStringLiteral("second.wav"));
    QVERIFY(!first.isEmpty() && !second.isEmpty());
    QFile notes(QDir(folder).filePath(QStringLiteral("notes.txt")));
    QVERIFY(notes.open(QIODevice::WriteOnly));
    notes.write("not media");
    notes.close();

    Window w;
    QTest::mouseClick(w.list()->addButton(), Qt::LeftButton);
    QTRY_VERIFY(w.view()->openPanel() != nullptr);
    QFileDialog* panel = w.view()->openPanel();
    QCOMPARE(panel->fileMode(), QFileDialog::ExistingFiles);
    panel->setDirectory(folder);
    auto* nameEdit = panel->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    QVERIFY(nameEdit != nullptr);
    nameEdit->setText(QStringLiteral("\"first.wav\" \"notes.txt\" \"second.wav\""));
    QMetaObject::invokeMethod(panel, "accept");

    QTRY_COMPARE(w.model.listedFiles(), QStringList({first, second}));
    QCOMPARE(w.rowCount(), 2);
    QCOMPARE(w.rowName(0), QStringLiteral("first.wav"));
    QCOMPARE(w.list()->countLabel()->text(), QStringLiteral("2 files"));

    QTRY_VERIFY(w.view()->fileAlertBox() != nullptr);
    QMessageBox* alert = w.view()->fileAlertBox();
    QCOMPARE(alert->text(), QStringLiteral("Unsupported File Type"));
    QCOMPARE(alert->informativeText(),
             QStringLiteral("The file 'notes.txt' is not a supported media file."));
    QCOMPARE(alert->buttons().size(), 1);
    QCOMPARE(alert->buttons().front()->text(), QStringLiteral("OK"));
    QTest::mouseClick(alert->buttons().front(), Qt::LeftButton);
    QTRY_VERIFY(!w.model.showingFileAlert());
    QTRY_VERIFY(w.view()->fileAlertBox() == nullptr);
}

void ContentViewTest::addsDroppedFilesAndAlertsForRefusedOnes()
{
    Window w;
    auto data = std::make_unique<QMimeData>();
    data->setUrls({QUrl::fromLocalFile(QStringLiteral("/media/Interview.wav")),
                   QUrl::fromLocalFile(QStringLiteral("/media/notes.txt")),
                   QUrl::fromLocalFile(QStringLiteral("/media/CLIP.MOV"))});
    QVERIFY(data->hasFormat(QStringLiteral("text/uri-list")));

    const QPointF centre(w.list()->width() / 2.0, w.list()->height() / 2.0);
    QDragEnterEvent enter(centre.toPoint(), Qt::CopyAction, data.get(), Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(w.list(), &enter);
    QVERIFY(enter.isAccepted());
    QVERIFY(w.model.isDragOver());
    QDropEvent drop(centre, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(w.list(), &drop);
    QVERIFY(drop.isAccepted());
    QVERIFY(!w.model.isDragOver());

    QTRY_COMPARE(w.model.listedFiles(), QStringList({QStringLiteral("/media/Interview.wav"),
                                                     QStringLiteral("/media/CLIP.MOV")}));
    QCOMPARE(w.rowCount(), 2);
    QTRY_VERIFY(w.view()->fileAlertBox() != nullptr);
    QCOMPARE(w.view()->fileAlertBox()->text(), QStringLiteral("Unsupported File Type"));
    QCOMPARE(w.view()->fileAlertBox()->informativeText(),
             QStringLiteral("The file 'notes.txt' is not a supported media file. Please select "
                            "audio or video files only."));

    // A drag without files is not the list's.
    auto text = std::make_unique<QMimeData>();
    text->setText(QStringLiteral("0"));
    QDragEnterEvent textEnter(centre.toPoint(), Qt::MoveAction, text.get(), Qt::LeftButton,
                              Qt::NoModifier);
    QApplication::sendEvent(w.list(), &textEnter);
    QVERIFY(!textEnter.isAccepted());
}

void ContentViewTest::showsQueuedFileAlertsOneAfterTheOther()
{
    Window w;
    auto data = std::make_unique<QMimeData>();
    data->setUrls({QUrl::fromLocalFile(QStringLiteral("/media/a.txt")),
                   QUrl::fromLocalFile(QStringLiteral("/media/b.txt"))});
    const QPointF centre(w.list()->width() / 2.0, w.list()->height() / 2.0);
    QDragEnterEvent enter(centre.toPoint(), Qt::CopyAction, data.get(), Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(w.list(), &enter);
    QDropEvent drop(centre, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(w.list(), &drop);

    for (const QString& name : {QStringLiteral("a.txt"), QStringLiteral("b.txt")}) {
        QTRY_VERIFY(w.view()->fileAlertBox() != nullptr);
        QMessageBox* alert = w.view()->fileAlertBox();
        QTRY_VERIFY(alert->isVisible());
        QCOMPARE(alert->informativeText(),
                 QStringLiteral("The file '%1' is not a supported media file. Please select "
                                "audio or video files only.")
                     .arg(name));
        QTest::mouseClick(alert->buttons().front(), Qt::LeftButton);
        QTRY_VERIFY(w.view()->fileAlertBox() != alert);
    }
    QTRY_VERIFY(!w.model.showingFileAlert());
    QTRY_VERIFY(w.view()->fileAlertBox() == nullptr);
}

void ContentViewTest::listsAThousandDroppedFilesRowByRow()
{
    // A thousand real files: copies of one short tone, named in the order they are dropped.
    const QString folder = m_dir.filePath(QStringLiteral("thousand"));
    QVERIFY(QDir().mkpath(folder));
    const QString tone = Fixtures::makeTone(folder, QStringLiteral("tone.wav"), 0.1, 8000, 1,
                                            {QStringLiteral("-c:a"), QStringLiteral("pcm_s16le")});
    QVERIFY2(!tone.isEmpty(), qPrintable(Fixtures::lastError()));
    constexpr int fileCount = 1000;
    QStringList files;
    QList<QUrl> urls;
    for (int i = 0; i < fileCount; ++i) {
        const QString path =
            QDir(folder).filePath(QStringLiteral("take %1.wav").arg(i, 4, 10, QLatin1Char('0')));
        QVERIFY(QFile::copy(tone, path));
        files.append(path);
        urls.append(QUrl::fromLocalFile(path));
    }

    Window w;
    w.window.resize(1280, 800);
    QCoreApplication::processEvents();
    int resets = 0;
    int insertions = 0;
    bool oneRowEach = true;
    connect(w.rowModel(), &QAbstractItemModel::modelReset, this, [&resets] { ++resets; });
    connect(w.rowModel(), &QAbstractItemModel::rowsInserted, this,
            [&](const QModelIndex&, int first, int last) {
                ++insertions;
                oneRowEach &= first == last;
            });

    auto data = std::make_unique<QMimeData>();
    data->setUrls(urls);
    QVERIFY(data->hasFormat(QStringLiteral("text/uri-list")));
    QElapsedTimer clock;
    clock.start();
    QVERIFY(dropOn(w.list(), data.get(), QPointF(w.list()->width() / 2.0, 40)));
    QTRY_COMPARE_WITH_TIMEOUT(w.rowCount(), fileCount, 60000);
    const qint64 listedAfter = clock.elapsed();
    qInfo("%d dropped files listed after %lld ms", fileCount, listedAfter);
    // Each file arrives on its own turn and becomes one new row; the rows before it stay as they
    // are. Rebuilding every row on each arrival took minutes for a drop of this size.
    QVERIFY2(listedAfter < 10000, qPrintable(QString::number(listedAfter)));
    QCOMPARE(resets, 0);
    QCOMPARE(insertions, fileCount);
    QVERIFY(oneRowEach);
    QCOMPARE(w.model.listedFiles(), files);
    QCOMPARE(w.rowName(0), QStringLiteral("take 0000.wav"));
    QCOMPARE(w.rowName(fileCount - 1), QStringLiteral("take 0999.wav"));
    QCOMPARE(w.list()->countLabel()->text(), QStringLiteral("1000 files"));
    // The layout catches up once the last file's turn is over.
    QCoreApplication::processEvents();

    // Scrolling reaches the end and any row between.
    QListView* rows = w.rows();
    QScrollBar* bar = rows->verticalScrollBar();
    QVERIFY(bar->maximum() > 0);
    rows->scrollToBottom();
    QCOMPARE(bar->value(), bar->maximum());
    const auto shown = [rows](const QRect& rect) {
        return QStringLiteral("%1,%2 %3x%4 in %5x%6")
            .arg(rect.x())
            .arg(rect.y())
            .arg(rect.width())
            .arg(rect.height())
            .arg(rows->viewport()->width())
            .arg(rows->viewport()->height());
    };
    QVERIFY2(rows->viewport()->rect().contains(w.rowRect(fileCount - 1)),
             qPrintable(shown(w.rowRect(fileCount - 1))));
    rows->scrollTo(w.row(500));
    QVERIFY(rows->viewport()->rect().intersects(w.rowRect(500)));

    // A click selects, Down moves the selection, Delete removes the selected file.
    const QRect picked = w.rowRect(500);
    QTest::mouseClick(rows->viewport(), Qt::LeftButton, Qt::NoModifier,
                      QPoint(picked.left() + 30, picked.center().y()));
    QCOMPARE(w.list()->selectedIndices(), QList<qint64>({500}));
    QTest::keyClick(rows, Qt::Key_Down);
    QCOMPARE(w.list()->selectedIndices(), QList<qint64>({501}));
    QVERIFY(w.window.grab().save(screenshotFolder() + QStringLiteral("/main-light-long-list.png")));
    QTest::keyClick(rows, Qt::Key_Delete);
    QTRY_COMPARE(w.rowCount(), fileCount - 1);
    QVERIFY(!w.model.listedFiles().contains(files.at(501)));
    QCOMPARE(w.rowName(501), QStringLiteral("take 0502.wav"));
    QCOMPARE(w.list()->countLabel()->text(), QStringLiteral("999 files"));

    // The remove button of a row far down the list.
    rows->scrollToBottom();
    QTest::mouseClick(rows->viewport(), Qt::LeftButton, Qt::NoModifier,
                      AutomatorFileRowView::removeButtonRect(w.rowRect(fileCount - 2)).center());
    QTRY_COMPARE(w.rowCount(), fileCount - 2);
    QVERIFY(!w.model.listedFiles().contains(files.last()));
    QCOMPARE(resets, 0);

    QTest::mouseClick(w.list()->clearButton(), Qt::LeftButton);
    QTRY_COMPARE(w.rowCount(), 0);
    QCOMPARE(w.list()->countLabel()->text(), QStringLiteral("0 files"));
}

void ContentViewTest::reordersByDraggingARowOntoAnother()
{
    Window w;
    const QStringList files{QStringLiteral("/m/a.wav"), QStringLiteral("/m/b.mov"),
                            QStringLiteral("/m/c.mp3")};
    w.model.addFiles(files);
    QCOMPARE(w.rowCount(), 3);

    const std::unique_ptr<QMimeData> dragged = w.rowDrag(0);
    QCOMPARE(dragged->text(), QStringLiteral("0"));
    QVERIFY(!dragged->hasUrls());

    // Dropped on its own row: nothing moves.
    QWidget* viewport = w.rows()->viewport();
    QVERIFY(dropOn(viewport, w.rowDrag(0).get(), w.rowRect(0).center()));
    QCoreApplication::processEvents();
    QCOMPARE(w.model.listedFiles(), files);

    Platform::Console::Recorder console;
    const std::unique_ptr<QMimeData> moved = w.rowDrag(0);
    QMimeData* data = moved.get();
    const QPointF centre = w.rowRect(2).center();
    QDragEnterEvent enter(centre.toPoint(), Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &enter);
    QVERIFY(enter.isAccepted());
    QCOMPARE(enter.dropAction(), Qt::MoveAction);
    QCOMPARE(w.list()->rowDelegate()->dropTargetRow(), 2);
    QVERIFY(w.list()->grab().save(screenshotFolder() + QStringLiteral("/files-drop-target.png")));
    QDropEvent drop(centre, Qt::MoveAction, data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &drop);
    QVERIFY(drop.isAccepted());
    QCOMPARE(w.list()->rowDelegate()->dropTargetRow(), -1);
    QTRY_COMPARE(w.model.listedFiles(),
                 QStringList({QStringLiteral("/m/b.mov"), QStringLiteral("/m/c.mp3"),
                              QStringLiteral("/m/a.wav")}));
    QVERIFY(console.lines().contains(QStringLiteral("✅ Moved file from index 0 to 2")));
    QTRY_COMPARE(w.rowName(2), QStringLiteral("a.wav"));

    // A file manager's drag, even with text, is never a row move.
    QMimeData filesWithText;
    filesWithText.setUrls({QUrl::fromLocalFile(QStringLiteral("/m/d.wav"))});
    filesWithText.setText(QStringLiteral("1"));
    QVERIFY(!w.rowModel()->canDropMimeData(&filesWithText, Qt::MoveAction, -1, -1, QModelIndex()));
}

void ContentViewTest::removesRowsByButtonAndByDeleteKey()
{
    Window w;
    w.model.addFiles({QStringLiteral("/m/a.wav"), QStringLiteral("/m/b.wav"),
                      QStringLiteral("/m/a.wav"), QStringLiteral("/m/c.wav")});
    QCOMPARE(w.rowCount(), 4);

    // Removing one of two equal rows removes both.
    QWidget* viewport = w.rows()->viewport();
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier,
                      AutomatorFileRowView::removeButtonRect(w.rowRect(0)).center());
    QTRY_COMPARE(w.model.listedFiles(),
                 QStringList({QStringLiteral("/m/b.wav"), QStringLiteral("/m/c.wav")}));
    QTRY_COMPARE(w.rowCount(), 2);

    const QRect second = w.rowRect(1);
    QTest::mouseClick(viewport, Qt::LeftButton, Qt::NoModifier,
                      QPoint(second.left() + 30, second.center().y()));
    QCOMPARE(w.list()->selectedIndices(), QList<qint64>({1}));
    QVERIFY(w.rows()->selectionModel()->isSelected(w.row(1)));
    QTest::keyClick(w.list(), Qt::Key_Delete);
    QTRY_COMPARE(w.model.listedFiles(), QStringList({QStringLiteral("/m/b.wav")}));
    QCOMPARE(w.list()->countLabel()->text(), QStringLiteral("1 file"));
}

void ContentViewTest::clearsTheList()
{
    Window w;
    w.model.addFiles({QStringLiteral("/m/a.wav"), QStringLiteral("/m/b.wav")});
    QVERIFY(w.list()->clearButton()->isEnabled());
    QTest::mouseClick(w.list()->clearButton(), Qt::LeftButton);
    QTRY_COMPARE(w.model.listedFiles(), QStringList());
    QCOMPARE(w.rowCount(), 0);
    QCOMPARE(w.list()->countLabel()->text(), QStringLiteral("0 files"));
    QVERIFY(!w.list()->clearButton()->isEnabled());
}

void ContentViewTest::formatAndCodecChangeTheSettingsSections()
{
    Window w;
    ContentView* view = w.view();
    QCOMPARE(view->formatBox()->labels(),
             QStringList({QStringLiteral("Video (MP4)"), QStringLiteral("Video (MOV)"),
                          QStringLiteral("Audio (AIFF)"), QStringLiteral("Audio (WAV)"),
                          QStringLiteral("Audio (M4A)"), QStringLiteral("Audio (CAF)")}));
    QCOMPARE(view->formatBox()->toolTip(), WindowTexts::formatHelp);
    // The preset picker's help is its own text alone, whichever preset is chosen.
    QVERIFY(w.model.selectedAnyPreset().has_value());
    QCOMPARE(view->presetBox()->toolTip(), WindowTexts::presetHelp);
    QCOMPARE(view->presetBox()->accessibleDescription(), WindowTexts::presetHelp);

    pickFormat(w, QStringLiteral("Audio (WAV)"));
    QVERIFY(shownIn(view->audioSettings(), &w.window));
    QVERIFY(!shownIn(view->videoSettings(), &w.window));
    AudioSettingsRows* audio = view->audioSettings()->rows();
    QCOMPARE(audio->codecBox()->labels(), QStringList({QStringLiteral("PCM (Uncompressed)")}));
    QCOMPARE(audio->codecBox()->currentText(), QStringLiteral("PCM (Uncompressed)"));
    QVERIFY(shownIn(audio->bitDepthBox(), &w.window));
    QVERIFY(!shownIn(audio->bitrateBox(), &w.window));

    // WAV to MP4 turns PCM into AAC, with its bit-rate row and hint.
    pickFormat(w, QStringLiteral("Video (MP4)"));
    QVERIFY(shownIn(view->videoSettings(), &w.window));
    QVERIFY(!shownIn(view->audioSettings(), &w.window));
    AudioSettingsRows* videoAudio = view->videoSettings()->audioRows();
    QCOMPARE(w.model.selectedAudioCodec(), AudioCodec::aac);
    QCOMPARE(videoAudio->codecBox()->labels(),
             QStringList({QStringLiteral("AAC (MP4/MOV) - Compressed"),
                          QStringLiteral("HE-AAC (MP4/MOV) - High Efficiency"),
                          QStringLiteral("HE-AAC v2 (MP4/MOV) - Ultra Efficient"),
                          QStringLiteral("ALAC (MP4/MOV) - Lossless")}));
    QCOMPARE(videoAudio->codecBox()->currentText(), QStringLiteral("AAC (MP4/MOV) - Compressed"));
    QVERIFY(shownIn(videoAudio->bitrateBox(), &w.window));
    QVERIFY(!shownIn(videoAudio->bitDepthBox(), &w.window));
    QCOMPARE(videoAudio->hintLabel()->text(),
             QStringLiteral("Recommended: 128+ kbps (high quality)"));
    QCOMPARE(videoAudio->bitrateBox()->labels().first(), QStringLiteral("32 kbps"));
    QCOMPARE(videoAudio->bitrateBox()->labels().at(3), QStringLiteral("128 kbps ✓"));

    // MOV offers PCM; picking it shows the bit depth instead of the bit rate.
    pickFormat(w, QStringLiteral("Video (MOV)"));
    QCOMPARE(videoAudio->codecBox()->labels().last(),
             QStringLiteral("PCM (MOV only) - Uncompressed"));
    videoAudio->codecBox()->pick(4);
    QCOMPARE(w.model.selectedAudioCodec(), AudioCodec::pcm);
    QVERIFY(shownIn(videoAudio->bitDepthBox(), &w.window));
    QVERIFY(!shownIn(videoAudio->bitrateBox(), &w.window));
    QVERIFY(!shownIn(videoAudio->hintLabel(), &w.window));

    // MOV with PCM to MP4: the codec check makes it AAC again.
    pickFormat(w, QStringLiteral("Video (MP4)"));
    QCOMPARE(videoAudio->codecBox()->currentText(), QStringLiteral("AAC (MP4/MOV) - Compressed"));

    // HE-AAC keeps a rate its list lacks; the box names it without offering it.
    w.model.setSelectedAudioBitrate(AudioBitrate::kbps320);
    videoAudio->codecBox()->pick(1);
    QCOMPARE(w.model.selectedAudioBitrate(), AudioBitrate::kbps320);
    QCOMPARE(videoAudio->bitrateBox()->currentIndex(), -1);
    QCOMPARE(videoAudio->bitrateBox()->placeholderText(), QStringLiteral("320 kbps"));
    QCOMPARE(videoAudio->hintLabel()->text(),
             QStringLiteral("Recommended: 24-64 kbps (mobile streaming)"));

    // Passthrough leaves no audio rows, and no level processing.
    view->videoSettings()->audioHandlingBox()->pick(0);
    QCOMPARE(view->videoSettings()->audioHandlingBox()->currentText(),
             QStringLiteral("Passthrough"));
    QVERIFY(!shownIn(videoAudio->codecBox(), &w.window));
    QVERIFY(!shownIn(view->levelProcessing(), &w.window));
    view->videoSettings()->audioHandlingBox()->pick(1);
    QVERIFY(shownIn(videoAudio->codecBox(), &w.window));
    QVERIFY(shownIn(view->levelProcessing(), &w.window));

    // Interlacing: the note shows only while making progressive.
    VideoSettingsView* video = view->videoSettings();
    QCOMPARE(video->interlacingBox()->labels(),
             QStringList({QStringLiteral("Keep Original"), QStringLiteral("Make Progressive")}));
    video->interlacingBox()->pick(1);
    QVERIFY(shownIn(video->deinterlacingNote(), &w.window));
    QCOMPARE(
        video->deinterlacingNote()->text(),
        QStringLiteral("Interlaced content will be automatically deinterlaced during conversion."));
    video->interlacingBox()->pick(0);
    QVERIFY(!shownIn(video->deinterlacingNote(), &w.window));
    QCOMPARE(video->resolutionBox()->labels().first(), QStringLiteral("Original"));
    QCOMPARE(video->frameRateBox()->labels().at(1), QStringLiteral("23.976 fps"));
}

void ContentViewTest::levelModeShowsItsRows()
{
    Window w;
    pickFormat(w, QStringLiteral("Audio (WAV)"));
    LevelProcessingView* level = w.view()->levelProcessing();
    QCOMPARE(level->title(), QStringLiteral("Audio Level Processing"));
    QCOMPARE(level->modeBox()->labels(),
             QStringList({QStringLiteral("None"), QStringLiteral("dBFS Normalization"),
                          QStringLiteral("Integrated LUFS")}));
    level->modeBox()->pick(0);
    QVERIFY(!shownIn(level->dbfsSlider(), &w.window));
    QVERIFY(!shownIn(level->lufsSlider(), &w.window));

    level->modeBox()->pick(2);
    QVERIFY(shownIn(level->lufsSlider(), &w.window));
    QVERIFY(shownIn(level->lufsPresetBox(), &w.window));
    level->lufsSlider()->setValue(-33);
    QCOMPARE(level->lufsPresetBox()->currentText(), QStringLiteral("Talkover Bed (-33 LUFS)"));
    QCOMPARE(level->lufsLabel()->text(), QStringLiteral("Target Loudness: -33 LUFS"));
    level->lufsSlider()->setValue(-30);
    QCOMPARE(level->lufsPresetBox()->currentText(), QStringLiteral("Custom"));

    level->modeBox()->pick(1);
    QVERIFY(shownIn(level->dbfsSlider(), &w.window));
    QVERIFY(!shownIn(level->lufsSlider(), &w.window));
    level->dbfsSlider()->setValue(-10);
    QCOMPARE(level->dbfsLabel()->text(), QStringLiteral("Target Peak Level: -1.0 dBFS"));
    QCOMPARE(w.model.selectedLevelProcessing(), ConversionEngine::AudioLevelTarget::dbFS(-1.0f));
}

void ContentViewTest::previewFollowsTheListAndSettings()
{
    Window w;
    pickFormat(w, QStringLiteral("Audio (WAV)"));
    w.model.setLevelMode(LevelMode::none);
    w.model.setSelectedSampleRate(SampleRate::rate48000);
    w.model.setSelectedBitDepth(BitDepth::depth24);
    w.model.setCreateSubfolders(true);
    w.model.setIncludeSettingsInFilename(true);
    QLabel* preview = w.view()->output()->previewLabel();
    QCOMPARE(preview->text(), w.model.outputPreview());
    QCOMPARE(preview->text().section(QLatin1Char('\n'), 0, 0),
             QStringLiteral("Audio/WAV/example (PCM_48kHz_24bit).wav"));
    QVERIFY(preview->text()
                .section(QLatin1Char('\n'), 1)
                .startsWith(QStringLiteral("📅 Creation Date: ")));
    QVERIFY(preview->text().endsWith(QStringLiteral(" (current)")));

    w.model.addFiles({QStringLiteral("/m/Interview.mov")});
    QCOMPARE(preview->text().section(QLatin1Char('\n'), 0, 0),
             QStringLiteral("Audio/WAV/Interview (PCM_48kHz_24bit).wav"));

    // The switches of the options section drive the same text.
    OptionsView* options = w.view()->options();
    QCOMPARE(options->includeSettingsBox()->text(), QStringLiteral("Include settings in filename"));
    QCOMPARE(options->includeSettingsBox()->toolTip(),
             QStringLiteral("Add conversion settings to the output filename for easy "
                            "identification"));
    options->includeSettingsBox()->click();
    QVERIFY(!w.model.includeSettingsInFilename());
    options->subfoldersBox()->click();
    QCOMPARE(preview->text().section(QLatin1Char('\n'), 0, 0), QStringLiteral("Interview.wav"));
    QCOMPARE(w.view()->output()->changeButton()->text(), QStringLiteral("Change.."));
}

void ContentViewTest::convertIsDisabledWithAnEmptyList()
{
    Window w;
    QPushButton* convert = w.view()->convertButton();
    QCOMPARE(convert->text(), QStringLiteral("Convert"));
    QVERIFY(!convert->isEnabled());
    QCOMPARE(convert->toolTip(),
             QStringLiteral("Start converting the selected files using the current preset and "
                            "settings. Files will be saved to the output directory."));
    w.model.addFiles({QStringLiteral("/m/a.wav")});
    QVERIFY(convert->isEnabled());
    w.model.clearFiles();
    QVERIFY(!convert->isEnabled());
}

void ContentViewTest::overwriteQuestionCancelsOrOverwrites()
{
    const QString folder = m_dir.filePath(QStringLiteral("overwrite"));
    const QString source = tone(folder, QStringLiteral("original.wav"), 0.5);
    QVERIFY(!source.isEmpty());
    const QByteArray before = Fixtures::sha256(source);
    const quint64 identityBefore = fileIdentity(source);

    Window w;
    pickFormat(w, QStringLiteral("Audio (WAV)"));
    w.model.setLevelMode(LevelMode::none);
    w.model.setSelectedBitDepth(BitDepth::depth24);
    w.model.setIncludeSettingsInFilename(false);
    w.model.setOverwriteExisting(true);
    w.model.setUseSourceDirectory(true);
    w.model.setCreateSubfolders(false);
    w.model.addFiles({source});

    QTest::mouseClick(w.view()->convertButton(), Qt::LeftButton);
    QTRY_VERIFY(w.view()->overwriteAlertBox() != nullptr);
    QMessageBox* box = w.view()->overwriteAlertBox();
    QCOMPARE(box->text(), QStringLiteral("Overwrite Original Files?"));
    QCOMPARE(box->informativeText(),
             QStringLiteral("This conversion will overwrite the original source file(s). The "
                            "original files will be permanently replaced.\n\nAre you sure you "
                            "want to continue?"));
    QStringList buttons;
    for (QAbstractButton* button : box->buttons())
        buttons.append(button->text());
    buttons.sort();
    QCOMPARE(buttons, QStringList({QStringLiteral("Cancel"), QStringLiteral("Overwrite")}));

    QAbstractButton* cancel = nullptr;
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == QStringLiteral("Cancel"))
            cancel = button;
    }
    QTest::mouseClick(cancel, Qt::LeftButton);
    QTRY_VERIFY(w.view()->overwriteAlertBox() == nullptr);
    QVERIFY(!w.model.showOverwriteWarning());
    QVERIFY(!w.model.pendingConversionSettings().has_value());
    QVERIFY(!w.model.mediaConverter()->isConverting());
    QCOMPARE(Fixtures::sha256(source), before);

    QTest::mouseClick(w.view()->convertButton(), Qt::LeftButton);
    QTRY_VERIFY(w.view()->overwriteAlertBox() != nullptr);
    box = w.view()->overwriteAlertBox();
    QAbstractButton* overwrite = nullptr;
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == QStringLiteral("Overwrite"))
            overwrite = button;
    }
    QVERIFY(overwrite != nullptr);
    bool sawConverting = false;
    connect(w.model.mediaConverter(), &MediaConverter::isConvertingChanged, this,
            [&sawConverting](bool converting) { sawConverting |= converting; });
    QTest::mouseClick(overwrite, Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(sawConverting, 20000);
    QTRY_VERIFY_WITH_TIMEOUT(!w.model.mediaConverter()->isConverting(), 60000);
    QVERIFY(!w.model.pendingConversionSettings().has_value());
    // The original's name now holds a new file: its conversion, swapped into place.
    const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(source);
    QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
    QCOMPARE(probe.formatName, QStringLiteral("wav"));
    QVERIFY(qAbs(probe.durationSeconds - 0.5) < 0.01);
    QVERIFY2(fileIdentity(source) != identityBefore,
             qPrintable(QDir(folder).entryList(QDir::Files | QDir::Hidden).join(QLatin1Char(','))));
}

void ContentViewTest::progressAreaFollowsARealConversion()
{
    const QString input =
        tone(m_dir.filePath(QStringLiteral("run/in")), QStringLiteral("take.wav"), 2.0);
    QVERIFY(!input.isEmpty());
    const QString outputFolder = m_dir.filePath(QStringLiteral("run/out"));
    QDir().mkpath(outputFolder);

    Window w;
    pickFormat(w, QStringLiteral("Audio (AIFF)"));
    w.model.setLevelMode(LevelMode::none);
    w.model.setCreateSubfolders(false);
    w.model.setIncludeSettingsInFilename(false);
    w.model.setUseSourceDirectory(false);
    w.model.outputDirectoryModel()->useDirectory(outputFolder);
    QTRY_COMPARE(w.view()->output()->directoryLabel()->toolTip(), outputFolder);
    w.model.addFiles({input});

    ProgressAreaView* area = w.view()->progressArea();
    QCOMPARE(area->progressBar()->palette().color(QPalette::Highlight),
             QColor::fromRgbF(0.42f, 0.25f, 0.75f));
    MediaConverter* converter = w.model.mediaConverter();
    auto* tracker = converter->enhancedProgressTracker();
    int largestBar = 0;
    double largestProgress = 0;
    bool barFollowed = true;
    QStringList statuses;
    bool dotFollowed = true;
    int heartbeatChanges = 0;
    QString buttonWhileConverting;
    QString helpWhileConverting;
    connect(area->progressBar(), &QProgressBar::valueChanged, this,
            [&largestBar](int value) { largestBar = std::max(largestBar, value); });
    connect(converter, &MediaConverter::progressChanged, this, [&](double progress) {
        largestProgress = std::max(largestProgress, progress);
        barFollowed &=
            area->progressBar()->value() == int(std::lround(std::clamp(progress, 0.0, 1.0) * 1000));
    });
    connect(
        converter, &MediaConverter::progressMessageChanged, this,
        [&statuses, area](const QString&) { statuses.append(area->statusLabel()->fullText()); });
    connect(tracker, &ConversionEngine::EnhancedProgressTracker::heartbeatActiveChanged, this,
            [&](bool active) {
                ++heartbeatChanges;
                dotFollowed &= area->heartbeatDot()->isBeating() == active;
                dotFollowed &= area->heartbeatDot()->targetOpacity() ==
                               (active ? 1.0 : HeartbeatDot::dimmedOpacity);
            });
    connect(converter, &MediaConverter::isConvertingChanged, this, [&](bool converting) {
        if (converting) {
            buttonWhileConverting = w.view()->convertButton()->text();
            helpWhileConverting = w.view()->convertButton()->toolTip();
            w.window.grab().save(screenshotFolder() + QStringLiteral("/main-light-converting.png"));
        }
    });

    QTest::mouseClick(w.view()->convertButton(), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(!buttonWhileConverting.isEmpty(), 20000);
    QTRY_VERIFY_WITH_TIMEOUT(!converter->isConverting(), 60000);

    QCOMPARE(buttonWhileConverting, QStringLiteral("Stop"));
    QCOMPARE(helpWhileConverting, QStringLiteral("Stop the current conversion. Partially "
                                                 "converted files may be incomplete."));
    QCOMPARE(w.view()->convertButton()->text(), QStringLiteral("Convert"));
    QVERIFY(!statuses.isEmpty());
    QCOMPARE(area->statusLabel()->fullText(), converter->progressMessage());
    QVERIFY(barFollowed);
    QCOMPARE(largestBar, int(std::lround(largestProgress * ProgressAreaView::barMaximum)));
    QCOMPARE(area->progressBar()->value(),
             int(std::lround(converter->progress() * ProgressAreaView::barMaximum)));
    QVERIFY(dotFollowed);
    QVERIFY(heartbeatChanges > 0);
    QCOMPARE(area->heartbeatDot()->isBeating(), tracker->heartbeatActive());

    const QString output = QDir(outputFolder).filePath(QStringLiteral("take.aiff"));
    const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(output);
    QVERIFY2(probe.found, qPrintable(Fixtures::lastError() + QStringLiteral(" ") +
                                     QDir(outputFolder).entryList().join(QLatin1Char(','))));
    QCOMPARE(probe.formatName, QStringLiteral("aiff"));
    QVERIFY(qAbs(probe.durationSeconds - 2.0) < 0.01);
}

void ContentViewTest::closingDuringAConversionAsksFirst()
{
    const QString input =
        tone(m_dir.filePath(QStringLiteral("closing/in")), QStringLiteral("long.wav"), 30.0);
    QVERIFY(!input.isEmpty());
    const QString outputFolder = m_dir.filePath(QStringLiteral("closing/out"));
    QDir().mkpath(outputFolder);
    QApplication::setQuitOnLastWindowClosed(false);

    Window w;
    pickFormat(w, QStringLiteral("Audio (M4A)"));
    w.model.setCreateSubfolders(false);
    w.model.setUseSourceDirectory(false);
    w.model.outputDirectoryModel()->useDirectory(outputFolder);
    w.model.addFiles({input});
    // Nothing to ask about before a run.
    QVERIFY(!w.model.quitNeedsConfirmation());

    MediaConverter* converter = w.model.mediaConverter();
    QTest::mouseClick(w.view()->convertButton(), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(converter->hasRunInProgress(), 20000);
    QVERIFY(!w.window.close());
    QMessageBox* box = w.window.quitQuestionBox();
    QVERIFY(box != nullptr);
    QCOMPARE(box->text(), QStringLiteral("Quit While Converting?"));
    QCOMPARE(box->informativeText(),
             QStringLiteral("A conversion is still running. If you quit now, the file being "
                            "converted is not finished and what was written of it is removed. "
                            "Files already converted stay."));
    QCOMPARE(box->defaultButton()->text(), QStringLiteral("Keep Converting"));
    QPushButton* quit = nullptr;
    for (QAbstractButton* button : box->buttons()) {
        if (button->text() == QStringLiteral("Quit"))
            quit = qobject_cast<QPushButton*>(button);
    }
    QVERIFY(quit != nullptr);
    // A second close while the question is up asks nothing new.
    QVERIFY(!w.window.close());
    QCOMPARE(w.window.quitQuestionBox(), box);

    QTest::mouseClick(box->defaultButton(), Qt::LeftButton);
    QTRY_VERIFY(w.window.quitQuestionBox() == nullptr);
    QVERIFY(w.window.isVisible());
    QVERIFY(converter->hasRunInProgress());

    QVERIFY(!w.window.close());
    QTRY_VERIFY(w.window.quitQuestionBox() != nullptr);
    for (QAbstractButton* button : w.window.quitQuestionBox()->buttons()) {
        if (button->text() == QStringLiteral("Quit"))
            QTest::mouseClick(button, Qt::LeftButton);
    }
    QTRY_VERIFY(!w.window.isVisible());

    // The run here goes on, as nothing ended the program; once it is over, closing asks
    // nothing.
    QTRY_VERIFY_WITH_TIMEOUT(!converter->hasRunInProgress(), 60000);
    QVERIFY(!w.model.quitNeedsConfirmation());
    QApplication::setQuitOnLastWindowClosed(true);
}

void ContentViewTest::nothingNeedsSidewaysScrolling()
{
    Window w;
    w.model.addFiles({QStringLiteral("/m/a rather long file name for a row of the list.wav")});
    for (const QString& format : {QStringLiteral("Video (MOV)"), QStringLiteral("Audio (M4A)")}) {
        pickFormat(w, format);
        for (const QSize size : {QSize(960, 640), QSize(1280, 800)}) {
            w.window.resize(size);
            QCoreApplication::processEvents();
            QCOMPARE(w.window.size(), size);
            QScrollArea* settings = w.view()->settingsScrollArea();
            QVERIFY2(settings->widget()->minimumSizeHint().width() <= settings->viewport()->width(),
                     qPrintable(QStringLiteral("%1 at %2×%3: needs %4, has %5")
                                    .arg(format)
                                    .arg(size.width())
                                    .arg(size.height())
                                    .arg(settings->widget()->minimumSizeHint().width())
                                    .arg(settings->viewport()->width())));
            QVERIFY(w.view()->convertButton()->isVisible());
        }
    }
    QCOMPARE(w.window.minimumSize(), QSize(960, 640));
}

void ContentViewTest::screenshots()
{
    const QStringList files{QStringLiteral("/media/Interview Take 1.wav"),
                            QStringLiteral("/media/Opening Titles.mov"),
                            QStringLiteral("/media/Field Recording.ogg")};
    for (const QString& appearance : {QStringLiteral("Light"), QStringLiteral("Dark")}) {
        AppearancePalette::apply(appearance);
        for (const QString& format :
             {QStringLiteral("Audio (M4A)"), QStringLiteral("Video (MOV)")}) {
            Window w;
            w.model.addFiles(files);
            pickFormat(w, format);
            w.model.metadataEditor()->setMetadataEditorExpanded(
                format.startsWith(QLatin1String("Video")));
            w.window.resize(1280, 800);
            QCoreApplication::processEvents();
            const QString name =
                QStringLiteral("%1/main-%2-%3.png")
                    .arg(screenshotFolder(), appearance.toLower(),
                         format.startsWith(QLatin1String("Audio")) ? QStringLiteral("audio")
                                                                   : QStringLiteral("video"));
            QVERIFY(w.window.grab().save(name));
            if (format.startsWith(QLatin1String("Video"))) {
                w.window.resize(960, 640);
                QCoreApplication::processEvents();
                QVERIFY(w.window.grab().save(QStringLiteral("%1/main-%2-minimum.png")
                                                 .arg(screenshotFolder(), appearance.toLower())));
            }
        }
    }
    AppearancePalette::apply(QStringLiteral("Light"));
}

QTEST_MAIN(ContentViewTest)
#include "tst_contentview.moc"
