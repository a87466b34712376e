// SPDX-License-Identifier: GPL-3.0-or-later
// Figures in names and texts keep a point as decimal mark when the user's locale writes a comma:
// the test builds a German locale of its own (localedef into a private LOCPATH) and runs again
// under it, where the C library's own printf would write "1,5".
#include "ConversionEngine/core/FixedDecimals.h"
#include "ConversionEngine/memory/MemoryManager.h"
#include "app/batch/AppMemoryManager.h"
#include "app/batch/BatchProgressManager.h"
#include "app/batch/ProgressTexts.h"
#include "app/naming/OutputNaming.h"
#include "app/naming/OutputPreview.h"
#include "app/presets/PresetManagerModel.h"
#include "app/window/ConversionControls.h"
#include "platform/media/SampleBuffer.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ManualProgressClock.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <memory>
#include <vector>

using namespace Ondrilet;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::FixedDecimals;

namespace {

bool isChild()
{
    return qEnvironmentVariableIsSet("ONDRILET_COMMA_LOCALE_CHILD");
}

// In the child: the C library itself writes a comma now, so a figure with a point came from
// the program's own formatter.
void verifyCommaLocale()
{
    char probe[16];
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    QCOMPARE(QByteArray(probe), QByteArray("1,5"));
}

} // namespace

class TestDecimalPoint : public QObject
{
    Q_OBJECT

private slots:
    void roundingIsToNearestWithTiesToEven()
    {
        QCOMPARE(FixedDecimals::text(-1.0, 1), std::string("-1.0"));
        QCOMPARE(FixedDecimals::text(0.25, 1), std::string("0.2"));
        QCOMPARE(FixedDecimals::text(0.35, 1), std::string("0.3")); // 0.34999… in binary
        QCOMPARE(FixedDecimals::text(-22.5, 0), std::string("-22"));
        QCOMPARE(FixedDecimals::text(1024.06, 1), std::string("1024.1"));
        QCOMPARE(FixedDecimals::text(static_cast<double>(-3.25f), 1), std::string("-3.2"));
    }

    void figuresKeepAPointUnderACommaLocale()
    {
        if (isChild()) {
            verifyCommaLocale();
            QCOMPARE(OutputNaming::levelToken(AudioLevelTarget::dbFS(-1.0f)),
                     std::optional<QString>(QStringLiteral("dBFS-1.0")));
            QCOMPARE(ConversionControls::dbfsSliderText(-0.5f),
                     QStringLiteral("Target Peak Level: -0.5 dBFS"));
            ConversionEngine::MemoryManager memory(50, 20);
            BatchProgressManager batch(&memory);
            QCOMPARE(ProgressTexts::speedText(batch.batchStats().averageProcessingSpeed),
                     QStringLiteral("0.0 MB/s"));
            QCOMPARE(ProgressTexts::ratioText(batch.compressionRatio()), QStringLiteral("0.0%"));
            QCOMPARE(FixedDecimals::text(1024.06, 1), std::string("1024.1"));
            return;
        }
        runUnderCommaLocale("figuresKeepAPointUnderACommaLocale");
    }

    // The memory figures: the monitor's log line past 1024 MiB and the batch's memory card.
    void memoryFiguresKeepAPointUnderACommaLocale()
    {
        if (!isChild()) {
            runUnderCommaLocale("memoryFiguresKeepAPointUnderACommaLocale");
            return;
        }
        verifyCommaLocale();
        TestSupport::ManualProgressClock clock;
        AppMemoryManager monitor;
        // 1024.1 MiB, to the byte.
        monitor.setResidentSizeSource([] { return qint64(1073846682); });
        LogCapture log(QStringLiteral("Ondrilet.AppMemoryManager"));
        clock.advance(30);
        monitor.handleMemoryTimer();
        QCOMPARE(log.lines().value(0),
                 (LogCapture::Line{QtCriticalMsg,
                                   QStringLiteral("High memory usage detected: 1024.1MB")}));

        ConversionEngine::MemoryManager memory(50, 20);
        BatchProgressManager batch(&memory);
        // 384 buffers of 4 KiB: 1.5 MiB.
        std::vector<std::shared_ptr<Platform::SampleBuffer>> buffers;
        for (int i = 0; i < 384; ++i) {
            buffers.push_back(
                Platform::SampleBuffer::make(Platform::MediaTime::zero(), 44100, 2, 16));
            memory.trackBuffer(buffers.back());
        }
        batch.progressTimerFired();
        // The memory card reads the figure as the progress window does.
        QCOMPARE(ProgressTexts::sizeText(batch.memoryStats().currentUsage),
                 QStringLiteral("1.5 MB"));
        QCOMPARE(ProgressTexts::megabytesText(1.25), QStringLiteral("1.2 MB"));
        QCOMPARE(ProgressTexts::sizeText(1572864), QStringLiteral("1.5 MB"));
        QCOMPARE(ProgressTexts::speedText(2.75), QStringLiteral("2.8 MB/s"));
        QCOMPARE(ProgressTexts::ratioText(12.35), QStringLiteral("12.3%"));
    }

    // The output preview under the settings, and the level texts of the preset editor.
    void previewTextsKeepAPointUnderACommaLocale()
    {
        if (!isChild()) {
            runUnderCommaLocale("previewTextsKeepAPointUnderACommaLocale");
            return;
        }
        verifyCommaLocale();
        OutputPreview::Inputs inputs;
        inputs.outputFormat = OutputFormat::audio(AudioFormat::wav);
        inputs.sampleRate = SampleRate::rate44100;
        inputs.levelProcessing = AudioLevelTarget::dbFS(-0.5f);
        inputs.firstFile = QStringLiteral("/music/take 1.flac");
        inputs.creationDateText = QStringLiteral("X");
        QCOMPARE(OutputPreview::text(inputs),
                 QStringLiteral("Audio/WAV/take 1 (PCM_44.1kHz_24bit_dBFS-0.5).wav\n📅 Creation "
                                "Date: X"));
        inputs.outputFormat = OutputFormat::video(VideoFormat::mov);
        inputs.videoCodec = VideoCodec::h264;
        inputs.frameRate = ConversionEngine::VideoFrameRate::fps2997;
        inputs.qualityMode = QualityMode::constant(23);
        inputs.audioCodec = AudioCodec::aac;
        inputs.audioBitrate = AudioBitrate::kbps192;
        inputs.levelProcessing = AudioLevelTarget::integratedLUFS(-23.5f);
        QCOMPARE(OutputPreview::tags(inputs),
                 (QStringList{"H.264", "29.97fps", "CRF23", "AAC", "192k", "44.1kHz", "LUFS-24"}));
        QCOMPARE(ConversionControls::lufsSliderText(-14.0f),
                 QStringLiteral("Target Loudness: -14 LUFS"));
        QCOMPARE(PresetManagerModel::dbfsText(-1.5f), QStringLiteral("-1.5 dBFS"));
        QCOMPARE(PresetManagerModel::lufsText(-23.0f), QStringLiteral("-23 LUFS"));
    }

private:
    QTemporaryDir m_locales;
    bool m_localeBuilt = false;

    // Runs the test function `name` again in a child whose C locale writes a decimal comma.
    void runUnderCommaLocale(const char* name)
    {
        if (!m_localeBuilt) {
            QVERIFY(m_locales.isValid());
            QProcess build;
            build.start(QStringLiteral("localedef"),
                        {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
                         QStringLiteral("UTF-8"),
                         m_locales.filePath(QStringLiteral("de_DE.UTF-8"))});
            if (!build.waitForFinished(120000) || build.exitCode() != 0)
                QSKIP("localedef cannot build a German locale here");
            m_localeBuilt = true;
        }
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ONDRILET_COMMA_LOCALE_CHILD"), QStringLiteral("1"));
        environment.insert(QStringLiteral("LOCPATH"), m_locales.path());
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(name)});
        QVERIFY(child.waitForFinished(60000));
        const QString output =
            QString::fromUtf8(child.readAllStandardOutput() + child.readAllStandardError());
        QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                 qPrintable(output));
        QVERIFY2(output.contains(QStringLiteral("PASS   : TestDecimalPoint::") +
                                 QString::fromLatin1(name)),
                 qPrintable(output));
    }
};

QTEST_GUILESS_MAIN(TestDecimalPoint)
#include "tst_decimalpoint.moc"
