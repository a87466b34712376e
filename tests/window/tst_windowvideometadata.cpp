// SPDX-License-Identifier: GPL-3.0-or-later
// The metadata panel's edits reaching a video file through the main window's model: the panel
// reads the clip's title, the user types another and picks a date, Convert writes an MP4 whose
// tags ffprobe shows with the typed title beside the camera's details, dated as picked.
#include "app/metadata/MetadataEditorModel.h"
#include "app/metadata/PendingMetadataStore.h"
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace Ondrilet;
using Platform::UserDefaults;
using TestSupport::Fixtures;

class TestWindowVideoMetadata : public QObject
{
    Q_OBJECT

    QTemporaryDir m_root;

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        qputenv("HOME", m_root.path().toUtf8());
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        UserDefaults::setStandardFilePath(m_root.filePath("defaults.conf"));
    }

    void theTitleTypedInThePanelIsTheOutputsTitle()
    {
        const QString sources = m_root.filePath("sources");
        const QString outputs = m_root.filePath("outputs");
        QVERIFY(QDir().mkpath(sources));
        QVERIFY(QDir().mkpath(outputs));
        const QString source = Fixtures::makeVideo(
            sources, "clip.mov", 1.0, false,
            {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-metadata",
             "title=Holiday", "-metadata", "make=Acme", "-metadata", "model=Shooter 7"});
        QVERIFY2(!source.isEmpty(), qPrintable(Fixtures::lastError()));

        PresetStore presets;
        ContentViewModel model(&presets);
        model.outputDirectoryModel()->useDirectory(outputs);
        model.setSelectedOutputFormat(OutputFormat::video(VideoFormat::mp4));
        model.setSelectedResolution(std::nullopt);
        model.setIncludeSettingsInFilename(false);
        model.setCreateSubfolders(false);
        MetadataEditorModel& panel = *model.metadataEditor();
        QSignalSpy read(&panel, &MetadataEditorModel::metadataReadFinished);
        model.addFiles({source});
        QTRY_VERIFY_WITH_TIMEOUT(read.count() > 0, 30000);
        QCOMPARE(panel.metadataTitle(), QStringLiteral("Holiday"));

        // Typing stores nothing; picking the date stores the edits, as the panel does.
        const QDateTime picked(QDate(2020, 2, 29), QTime(12, 30), Qt::UTC);
        panel.setMetadataTitle("Harbour");
        panel.setMetadataUseCustomDate(true);
        QSignalSpy stored(&panel, &MetadataEditorModel::metadataStored);
        panel.setMetadataCustomCreationDate(picked);
        QTRY_VERIFY_WITH_TIMEOUT(stored.count() > 0, 30000);
        QCOMPARE(PendingMetadataStore().read(source).value_or(QCborMap()).value("title").toString(),
                 QStringLiteral("Harbour"));

        model.startConversion();
        QTRY_VERIFY_WITH_TIMEOUT(
            !model.mediaConverter()->isConverting() &&
                model.mediaConverter()->enhancedProgressTracker()->statusMessage() ==
                    QStringLiteral("✅ 1 files converted successfully."),
            60000);
        QVERIFY(!model.showingAlert());

        const QString output = outputs + "/clip.mp4";
        const QJsonObject tags =
            Fixtures::probe(output).value("format").toObject().value("tags").toObject();
        QCOMPARE(tags.value("title").toString(), QStringLiteral("Harbour"));
        QCOMPARE(tags.value("make").toString(), QStringLiteral("Acme"));
        QCOMPARE(tags.value("model").toString(), QStringLiteral("Shooter 7"));
        QCOMPARE(tags.value("date").toString(), QStringLiteral("2020-02-29T12:30:00Z"));
        QCOMPARE(QFileInfo(output).lastModified().toUTC(), picked);
        QVERIFY(!UserDefaults::standard().contains("pendingMetadata_clip.mov"));
        QVERIFY(!UserDefaults::standard().contains("postConversion_creationDate_clip.mp4"));
    }
};

QTEST_GUILESS_MAIN(TestWindowVideoMetadata)
#include "tst_windowvideometadata.moc"
