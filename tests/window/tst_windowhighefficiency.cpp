// SPDX-License-Identifier: GPL-3.0-or-later
// The high-efficiency AAC codecs reaching a file through the main window's model: the DAB+ factory
// preset picked from the store, and HE-AAC picked in the audio codec setting, each convert a
// two-second stereo WAV into an M4A that ffprobe reads as AAC of that profile, rate and length.
#include "app/presets/PresetStore.h"
#include "app/window/ContentViewModel.h"
#include "app/window/OutputDirectoryModel.h"
#include "platform/foundation/UserDefaults.h"
#include "tests/support/Fixtures.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <memory>

using namespace Ondrilet;
using Platform::UserDefaults;
using TestSupport::Fixtures;

class TestWindowHighEfficiency : public QObject
{
    Q_OBJECT

    QTemporaryDir m_root;
    QString m_source;
    QString m_outputs;
    std::unique_ptr<PresetStore> m_store;
    std::unique_ptr<ContentViewModel> m_model;

    // Starts the run as the Convert button does and waits for the driver's closing line.
    bool convertSource()
    {
        ContentViewModel& model = *m_model;
        model.setCreateSubfolders(false);
        model.addFiles({m_source});
        model.startConversion();
        if (model.showOverwriteWarning())
            return false;
        for (int i = 0; i < 600; ++i) {
            if (!model.mediaConverter()->isConverting() &&
                model.mediaConverter()->enhancedProgressTracker()->statusMessage() ==
                    QStringLiteral("✅ 1 files converted successfully."))
                return !model.showingAlert();
            QTest::qWait(50);
        }
        qWarning("status stayed: %s",
                 qPrintable(model.mediaConverter()->enhancedProgressTracker()->statusMessage()));
        return false;
    }

    // The one output, checked as stereo AAC of `profile` at `rate` lasting the source's two
    // seconds within one 2048-sample frame.
    void verifyOutput(const QString& profile, int rate)
    {
        const QStringList files = Fixtures::filesBelow(m_outputs);
        QCOMPARE(files.size(), 1);
        QVERIFY2(files.first().endsWith(QStringLiteral(".m4a")), qPrintable(files.first()));
        const QString output = m_outputs + QLatin1Char('/') + files.first();
        const TestSupport::AudioStreamProbe probe = Fixtures::probeAudio(output);
        QVERIFY2(probe.found, qPrintable(Fixtures::lastError()));
        QCOMPARE(probe.codecName, QStringLiteral("aac"));
        QCOMPARE(probe.sampleRate, rate);
        QCOMPARE(probe.channels, 2);
        QVERIFY2(std::abs(probe.durationSeconds - 2.0) < 2048.0 / rate,
                 qPrintable(QString::number(probe.durationSeconds)));
        const QJsonArray streams =
            Fixtures::probe(output).value(QStringLiteral("streams")).toArray();
        QCOMPARE(streams.at(0).toObject().value(QStringLiteral("profile")).toString(), profile);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        qputenv("HOME", m_root.path().toUtf8());
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        UserDefaults::setStandardFilePath(m_root.filePath("defaults.conf"));
        const QString sources = m_root.filePath("sources");
        QVERIFY(QDir().mkpath(sources));
        m_source = Fixtures::makeTone(sources, "a.wav", 2.0, 44100, 2, {"-c:a", "pcm_s16le"});
        QVERIFY2(!m_source.isEmpty(), qPrintable(Fixtures::lastError()));
    }

    void init()
    {
        for (const QString& key : UserDefaults::standard().keys())
            UserDefaults::standard().removeObject(key);
        m_outputs = m_root.filePath("outputs");
        QVERIFY(QDir(m_outputs).removeRecursively());
        QVERIFY(QDir().mkpath(m_outputs));
        m_store = std::make_unique<PresetStore>();
        m_model = std::make_unique<ContentViewModel>(m_store.get());
        m_model->outputDirectoryModel()->useDirectory(m_outputs);
    }

    void cleanup()
    {
        m_model.reset();
        m_store.reset();
        for (int i = 0; i < 10; ++i)
            QCoreApplication::processEvents();
    }

    void theDabPresetWritesHeAacV2At48k()
    {
        const std::optional<AnyPreset> preset =
            m_store->presetNamed(QStringLiteral("HE-AAC v2 24k/48 (DAB+)"));
        QVERIFY(preset.has_value());
        m_model->setSelectedAnyPreset(preset);
        QCOMPARE(m_model->selectedOutputFormat(), OutputFormat::audio(AudioFormat::m4a));
        QCOMPARE(m_model->selectedAudioCodec(), AudioCodec::heAacV2);
        QCOMPARE(m_model->selectedAudioBitrate(), AudioBitrate::kbps24);
        QVERIFY(convertSource());
        verifyOutput(QStringLiteral("HE-AACv2"), 48000);
    }

    void heAacPickedInTheCodecSettingWritesHeAac()
    {
        ContentViewModel& model = *m_model;
        model.setSelectedOutputFormat(OutputFormat::audio(AudioFormat::m4a));
        model.setSelectedAudioCodec(AudioCodec::heAac);
        model.setSelectedAudioBitrate(AudioBitrate::kbps48);
        model.setSelectedSampleRate(SampleRate::rate48000);
        model.setLevelMode(LevelMode::none);
        QCOMPARE(model.selectedAudioCodec(), AudioCodec::heAac);
        QVERIFY(convertSource());
        verifyOutput(QStringLiteral("HE-AAC"), 48000);
    }
};

QTEST_GUILESS_MAIN(TestWindowHighEfficiency)
#include "tst_windowhighefficiency.moc"
