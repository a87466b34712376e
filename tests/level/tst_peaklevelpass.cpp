// SPDX-License-Identifier: GPL-3.0-or-later
#include "ConversionEngine/errors/ConversionError.h"
#include "ConversionEngine/level/PeakLevelPass.h"
#include "LevelFixtures.h"
#include "LevelSignals.h"
#include "platform/media/MediaError.h"

#include <QCoro/QCoroTask>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>

using ConversionEngine::ConversionError;
using ConversionEngine::PeakLevel;
using ConversionEngine::PeakLevelPass;
using LevelSignals::bits;

namespace {

PeakLevel measure(const QString& path)
{
    return LevelFixtures::awaitBlocking(PeakLevelPass::measurePeakLevel(path));
}

float largestMagnitude(const std::vector<float>& samples)
{
    float peak = 0.0f;
    for (const float sample : samples)
        peak = std::max(peak, std::fabs(sample));
    return peak;
}

} // namespace

class TestPeakLevelPass : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void peakOfAllChannelsAsDecoded()
    {
        // The louder channel is the right one, in a compressed file.
        const QString path = m_dir.filePath(QStringLiteral("stereo.m4a"));
        QVERIFY(LevelFixtures::makeAudio(
            path, QStringLiteral("0.3*sin(2*PI*440*t)|0.6*sin(2*PI*660*t)"), 44100, 2.0,
            {QStringLiteral("-c:a"), QStringLiteral("aac"), QStringLiteral("-b:a"),
             QStringLiteral("128k")}));
        const float expected = largestMagnitude(LevelFixtures::decodeWithFfmpeg(path));
        QVERIFY(expected > 0.55f && expected < 0.7f);
        const PeakLevel level = measure(path);
        QCOMPARE(bits(level.linear), bits(expected));
        QCOMPARE(bits(level.decibels), bits(20.0f * std::log10(expected + 1e-12f)));
    }

    void halfScaleReadsMinusSixDecibels()
    {
        const QString path = m_dir.filePath(QStringLiteral("half.wav"));
        QVERIFY(LevelFixtures::makeAudio(path, QStringLiteral("0.5*sin(2*PI*1000*t)"), 48000, 1.0));
        const PeakLevel level = measure(path);
        QCOMPARE(bits(level.linear), bits(0.5f));
        QCOMPARE(QString::number(static_cast<double>(level.decibels), 'f', 3),
                 QStringLiteral("-6.021"));
    }

    void silence()
    {
        const QString path = m_dir.filePath(QStringLiteral("silence.wav"));
        QVERIFY(LevelFixtures::makeAudio(path, QStringLiteral("0|0"), 48000, 1.0));
        const PeakLevel level = measure(path);
        QCOMPARE(bits(level.linear), bits(0.0f));
        QCOMPARE(QString::number(static_cast<double>(level.decibels), 'f', 3),
                 QStringLiteral("-240.000"));
    }

    void noAudioTrack()
    {
        const QString path = m_dir.filePath(QStringLiteral("picture.mp4"));
        QVERIFY(LevelFixtures::makeSilentVideo(path));
        try {
            measure(path);
            QFAIL("no error");
        } catch (const ConversionError& error) {
            QCOMPARE(error, ConversionError::invalidFileStructure(
                                QStringLiteral("No audio track found for dBFS analysis")));
        }
    }

    void openingErrorsPassUnchanged()
    {
        try {
            measure(m_dir.filePath(QStringLiteral("absent.wav")));
            QFAIL("no error");
        } catch (const Platform::MediaError& error) {
            QVERIFY(error.isMediaDomain());
        }
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(TestPeakLevelPass)
#include "tst_peaklevelpass.moc"
