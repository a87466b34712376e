// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/media/sbr/EncoderPlan.h"
#include "tests/media/HeAacTestSupport.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

using namespace Platform;
using TestSupport::Fixtures;

namespace {

constexpr double fixtureSeconds = 2.0;

QString profileOf(const QString& path)
{
    const QJsonObject json = Fixtures::probe(path);
    for (const QJsonValue& value : json.value(QStringLiteral("streams")).toArray()) {
        const QJsonObject stream = value.toObject();
        if (stream.value(QStringLiteral("codec_type")).toString() == QStringLiteral("audio"))
            return stream.value(QStringLiteral("profile")).toString();
    }
    return {};
}

} // namespace

class HeAacTests : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_dir;

    QString path(const QString& name) const { return m_dir.filePath(name); }

    QString makeSource(const QString& name, const QString& graph, int rate)
    {
        const QString target = path(name);
        if (QFileInfo::exists(target))
            return target;
        const bool made = Fixtures::runFfmpeg(
            {QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"), graph,
             QStringLiteral("-t"), QString::number(fixtureSeconds), QStringLiteral("-ar"),
             QString::number(rate), QStringLiteral("-c:a"), QStringLiteral("pcm_f32le"), target});
        return made ? target : QString();
    }

    // Stereo pink noise, a different noise in each channel.
    QString pinkNoise(int rate)
    {
        return makeSource(QStringLiteral("pink-%1.wav").arg(rate),
                          QStringLiteral("anoisesrc=color=pink:amplitude=0.25:seed=3:r=%1[a];"
                                         "anoisesrc=color=pink:amplitude=0.25:seed=5:r=%1[b];"
                                         "[a][b]amerge=inputs=2")
                              .arg(rate),
                          rate);
    }

    // Pink noise that swells and fades four times a second in both channels, like syllables.
    QString speechLikeNoise(int rate)
    {
        return makeSource(QStringLiteral("speech-%1.wav").arg(rate),
                          QStringLiteral("anoisesrc=color=pink:amplitude=0.4:seed=17:nb_samples=64:"
                                         "r=%1,volume='0.05+0.95*pow(sin(PI*4*t),2)':eval=frame,"
                                         "pan=stereo|c0=c0|c1=0.7*c0")
                              .arg(rate),
                          rate);
    }

    // Three sawtooth notes, rich in overtones right up the band.
    QString chord(int rate)
    {
        auto saw = [](double f) { return QStringLiteral("2*(t*%1-floor(0.5+t*%1))").arg(f); };
        const QString mix =
            QStringLiteral("0.12*(%1+%2+%3)").arg(saw(220.0), saw(277.18), saw(329.63));
        return makeSource(QStringLiteral("chord-%1.wav").arg(rate),
                          QStringLiteral("aevalsrc=%1|%1:s=%2").arg(mix).arg(rate), rate);
    }

    // Pink noise panned left (the right channel at half the left's amplitude), or centred.
    QString pannedNoise(int rate, double rightGain)
    {
        return makeSource(QStringLiteral("panned-%1-%2.wav").arg(rate).arg(rightGain),
                          QStringLiteral("anoisesrc=color=pink:amplitude=0.3:seed=9:r=%1,"
                                         "pan=stereo|c0=c0|c1=%2*c0")
                              .arg(rate)
                              .arg(rightGain),
                          rate);
    }

    // Left-minus-right level (dB) per third of an octave from 150 Hz to 15 kHz.
    static std::vector<double> panning(const TestSupport::DecodedAudio& audio, int rate)
    {
        const qint64 first = rate / 4;
        const qint64 end = audio.frameCount() - rate / 4;
        const std::vector<double> left = HeAacTest::spectrum(audio, 0, first, end);
        const std::vector<double> right = HeAacTest::spectrum(audio, 1, first, end);
        std::vector<double> differences;
        for (double low = 150.0; low * 1.26 <= 15000.0; low *= 1.26)
            differences.push_back(HeAacTest::bandLevel(left, rate, low, low * 1.26) -
                                  HeAacTest::bandLevel(right, rate, low, low * 1.26));
        return differences;
    }

    // Quiet low-band noise with 10 ms bursts of white noise at times that fall differently on
    // the frames.
    QString bursts(int rate)
    {
        QStringList on;
        for (double start : {0.3, 0.613, 0.931, 1.247, 1.561})
            on.append(QStringLiteral("between(t,%1,%2)").arg(start).arg(start + 0.01));
        return makeSource(
            QStringLiteral("bursts-%1.wav").arg(rate),
            QStringLiteral("anoisesrc=color=white:amplitude=0.5:seed=11:nb_samples=16:r=%1,"
                           "volume='%2':eval=frame,highpass=f=9000,highpass=f=9000[b];"
                           "anoisesrc=color=pink:amplitude=0.2:seed=12:r=%1,lowpass=f=2000,"
                           "lowpass=f=2000[l];[b][l]amix=inputs=2:normalize=0,"
                           "aformat=channel_layouts=mono")
                .arg(rate)
                .arg(on.join(QLatin1Char('+'))),
            rate);
    }

    // Power (dB) of what lies above `lowHertz` in each 64-sample block of channel 0.
    static std::vector<double> highBandEnvelope(const TestSupport::DecodedAudio& audio, int rate,
                                                double lowHertz)
    {
        // A windowed-sinc high-pass, 255 taps, delay compensated.
        constexpr int taps = 255;
        std::vector<double> filter(taps);
        const double cutoff = lowHertz / rate;
        for (int n = 0; n < taps; ++n) {
            const double t = n - (taps - 1) / 2.0;
            const double window = 0.42 - 0.5 * std::cos(2 * std::numbers::pi * n / (taps - 1)) +
                                  0.08 * std::cos(4 * std::numbers::pi * n / (taps - 1));
            const double lowPass =
                t == 0 ? 2 * cutoff
                       : std::sin(2 * std::numbers::pi * cutoff * t) / (std::numbers::pi * t);
            filter[std::size_t(n)] = ((t == 0 ? 1.0 : 0.0) - lowPass) * window;
        }
        std::vector<double> levels;
        for (qint64 block = 0; (block + 1) * 64 + taps < audio.frameCount(); ++block) {
            double sum = 1e-20;
            for (qint64 i = block * 64; i < (block + 1) * 64; ++i) {
                double value = 0.0;
                for (int n = 0; n < taps; ++n) {
                    const qint64 at = i + (taps - 1) / 2 - n;
                    if (at >= 0 && at < audio.frameCount())
                        value += filter[std::size_t(n)] *
                                 audio.samples[std::size_t(at) * std::size_t(audio.channels)];
                }
                sum += value * value;
            }
            levels.push_back(10.0 * std::log10(sum));
        }
        return levels;
    }

    // Low-band noise with a steady tone of `hertz` above it.
    QString toneOverNoise(int rate, double hertz)
    {
        return makeSource(QStringLiteral("tone-%1-%2.wav").arg(rate).arg(hertz),
                          QStringLiteral("anoisesrc=color=pink:amplitude=0.3:seed=13:r=%1,"
                                         "lowpass=f=3000,lowpass=f=3000[n];"
                                         "sine=f=%2:r=%1,volume=0.25[t];"
                                         "[n][t]amix=inputs=2:normalize=0")
                              .arg(rate)
                              .arg(hertz),
                          rate);
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        // Leaves the files behind for a listen when asked to.
        if (qEnvironmentVariableIsSet("ONDRILET_KEEP_TEST_FILES")) {
            m_dir.setAutoRemove(false);
            qInfo("files in %s", qPrintable(m_dir.path()));
        }
    }

    void probesAsHighEfficiency_data()
    {
        QTest::addColumn<quint32>("formatId");
        QTest::addColumn<int>("rate");
        QTest::addColumn<int>("channels");
        QTest::addColumn<QString>("profile");
        QTest::newRow("HE-AAC stereo 48 kHz")
            << quint32(AudioFormatId::mpeg4AACHighEfficiency) << 48000 << 2 << "HE-AAC";
        QTest::newRow("HE-AAC mono 44.1 kHz")
            << quint32(AudioFormatId::mpeg4AACHighEfficiency) << 44100 << 1 << "HE-AAC";
        QTest::newRow("HE-AAC v2 48 kHz")
            << quint32(AudioFormatId::mpeg4AACHighEfficiencyV2) << 48000 << 2 << "HE-AACv2";
        QTest::newRow("HE-AAC v2 96 kHz")
            << quint32(AudioFormatId::mpeg4AACHighEfficiencyV2) << 96000 << 2 << "HE-AACv2";
    }

    void probesAsHighEfficiency()
    {
        QFETCH(quint32, formatId);
        QFETCH(int, rate);
        QFETCH(int, channels);
        QFETCH(QString, profile);
        const QString source = pinkNoise(rate);
        QVERIFY(!source.isEmpty());
        const QString target =
            path(QStringLiteral("probe-%1-%2-%3.m4a").arg(formatId).arg(rate).arg(channels));
        const std::optional<QString> failure =
            HeAacTest::write(source, target, FileType::appleM4A,
                             HeAacTest::highEfficiency(formatId, rate, channels));
        QVERIFY2(!failure, qPrintable(failure.value_or(QString())));
        const TestSupport::AudioStreamProbe stream = Fixtures::probeAudio(target);
        QCOMPARE(stream.codecName, QStringLiteral("aac"));
        QCOMPARE(profileOf(target), profile);
        QCOMPARE(stream.sampleRate, rate);
        // FFmpeg's decoder cannot rule out parametric stereo in a one-channel high-band stream
        // and presents it as two equal channels.
        QCOMPARE(stream.channels, 2);
        const double frame = 2048.0 / rate;
        QVERIFY2(std::abs(stream.durationSeconds - fixtureSeconds) <= frame,
                 qPrintable(QString::number(stream.durationSeconds)));
        const TestSupport::DecodedAudio decoded = Fixtures::decode(target);
        QCOMPARE(decoded.sampleRate, rate);
        if (channels == 1) {
            for (qint64 i = 0; i < decoded.frameCount(); ++i)
                QCOMPARE(decoded.samples[std::size_t(2 * i)],
                         decoded.samples[std::size_t(2 * i + 1)]);
        }
        QVERIFY2(std::abs(double(decoded.frameCount()) / rate - fixtureSeconds) <= frame,
                 qPrintable(QString::number(decoded.frameCount())));
    }

    void highBandFollowsTheSource_data()
    {
        QTest::addColumn<QString>("fixture");
        QTest::addColumn<int>("bitRate");
        QTest::newRow("pink noise 48k") << "pink" << 48000;
        QTest::newRow("chord 48k") << "chord" << 48000;
        QTest::newRow("speech-like noise 32k") << "speech" << 32000;
    }

    void highBandFollowsTheSource()
    {
        QFETCH(QString, fixture);
        QFETCH(int, bitRate);
        constexpr int rate = 48000;
        const QString source = fixture == QStringLiteral("pink")     ? pinkNoise(rate)
                               : fixture == QStringLiteral("speech") ? speechLikeNoise(rate)
                                                                     : chord(rate);
        QVERIFY(!source.isEmpty());
        const QString target = path(QStringLiteral("band-%1-%2.m4a").arg(fixture).arg(bitRate));
        const std::optional<QString> failure = HeAacTest::write(
            source, target, FileType::appleM4A,
            HeAacTest::highEfficiency(AudioFormatId::mpeg4AACHighEfficiency, rate, 2, bitRate));
        QVERIFY2(!failure, qPrintable(failure.value_or(QString())));

        const std::optional<Sbr::EncoderPlan> plan =
            Sbr::EncoderPlan::make(rate, 2, false, bitRate);
        QVERIFY(plan);
        const TestSupport::DecodedAudio original = Fixtures::decode(source);
        const TestSupport::DecodedAudio decoded = Fixtures::decode(target);
        QCOMPARE(decoded.channels, 2);
        const qint64 first = rate / 4;
        const qint64 end = std::min(original.frameCount(), decoded.frameCount()) - rate / 4;
        const std::vector<int>& bands = plan->tables.high;
        double sum = 0.0;
        QStringList report;
        for (int channel = 0; channel < 2; ++channel) {
            const std::vector<double> wanted = HeAacTest::spectrum(original, channel, first, end);
            const std::vector<double> got = HeAacTest::spectrum(decoded, channel, first, end);
            for (std::size_t b = 0; b + 1 < bands.size(); ++b) {
                const double low = bands[b] * rate / 128.0;
                const double high = bands[b + 1] * rate / 128.0;
                const double difference = HeAacTest::bandLevel(got, rate, low, high) -
                                          HeAacTest::bandLevel(wanted, rate, low, high);
                sum += std::abs(difference);
                report.append(QString::number(difference, 'f', 1));
            }
        }
        const double mean = sum / double(report.size());
        qInfo("band differences (dB): %s; mean %.2f", qPrintable(report.join(QLatin1Char(' '))),
              mean);
        QVERIFY2(mean <= 3.0, qPrintable(report.join(QLatin1Char(' '))));
    }

    void parametricStereoKeepsThePanning_data()
    {
        QTest::addColumn<double>("rightGain");
        QTest::addColumn<int>("bitRate");
        QTest::newRow("panned left, 32 kb/s") << 0.5 << 32000;
        QTest::newRow("panned left, 16 kb/s") << 0.5 << 16000;
        QTest::newRow("centred, 24 kb/s") << 1.0 << 24000;
    }

    void parametricStereoKeepsThePanning()
    {
        QFETCH(double, rightGain);
        QFETCH(int, bitRate);
        constexpr int rate = 48000;
        const QString source = pannedNoise(rate, rightGain);
        QVERIFY(!source.isEmpty());
        const QString target = path(QStringLiteral("ps-%1-%2.m4a").arg(rightGain).arg(bitRate));
        const std::optional<QString> failure = HeAacTest::write(
            source, target, FileType::appleM4A,
            HeAacTest::highEfficiency(AudioFormatId::mpeg4AACHighEfficiencyV2, rate, 2, bitRate));
        QVERIFY2(!failure, qPrintable(failure.value_or(QString())));
        QCOMPARE(profileOf(target), QStringLiteral("HE-AACv2"));
        const std::vector<double> wanted = panning(Fixtures::decode(source), rate);
        const std::vector<double> got = panning(Fixtures::decode(target), rate);
        QCOMPARE(got.size(), wanted.size());
        QStringList report;
        double worst = 0.0;
        for (std::size_t b = 0; b < got.size(); ++b) {
            worst = std::max(worst, std::abs(got[b] - wanted[b]));
            report.append(QString::number(got[b] - wanted[b], 'f', 1));
        }
        qInfo("panning error per band (dB): %s", qPrintable(report.join(QLatin1Char(' '))));
        QVERIFY2(worst <= 2.0, qPrintable(report.join(QLatin1Char(' '))));
    }

    void transientsShowNoLongPreEcho()
    {
        constexpr int rate = 48000;
        const QString source = bursts(rate);
        QVERIFY(!source.isEmpty());
        const QString target = path(QStringLiteral("bursts.m4a"));
        const std::optional<QString> failure = HeAacTest::write(
            source, target, FileType::appleM4A,
            HeAacTest::highEfficiency(AudioFormatId::mpeg4AACHighEfficiency, rate, 1, 32000));
        QVERIFY2(!failure, qPrintable(failure.value_or(QString())));
        const std::optional<Sbr::EncoderPlan> plan = Sbr::EncoderPlan::make(rate, 1, false, 32000);
        QVERIFY(plan);
        const double crossover = plan->crossoverHertz * 1.1;
        const std::vector<double> wanted =
            highBandEnvelope(Fixtures::decode(source), rate, crossover);
        const std::vector<double> got = highBandEnvelope(Fixtures::decode(target), rate, crossover);
        const double peak = *std::max_element(wanted.begin(), wanted.end());
        // Each burst's first block within 20 dB of the peak, in the source and decoded; one
        // time slot of the high band's grid is two blocks of 64 samples.
        QStringList report;
        int worst = 0;
        for (std::size_t block = 1; block < wanted.size(); ++block) {
            if (!(wanted[block] > peak - 20.0 && wanted[block - 1] <= peak - 20.0))
                continue;
            std::size_t first = block - 40;
            while (first < block + 40 && got[first] <= peak - 20.0)
                ++first;
            const int early = int(block) - int(first);
            worst = std::max(worst, early);
            report.append(QString::number(early));
        }
        qInfo("blocks of pre-echo per burst: %s", qPrintable(report.join(QLatin1Char(' '))));
        QCOMPARE(report.size(), 5);
        QVERIFY2(worst <= 2, qPrintable(report.join(QLatin1Char(' '))));
    }

    void aloneToneInTheHighBandStaysATone()
    {
        constexpr int rate = 48000;
        const std::optional<Sbr::EncoderPlan> plan = Sbr::EncoderPlan::make(rate, 1, false, 32000);
        QVERIFY(plan);
        // A band in the middle of the replicated range, the tone on its middle subband.
        const std::vector<int>& bands = plan->tables.high;
        const std::size_t band = bands.size() / 2;
        const int middle = (bands[band] + bands[band + 1]) / 2;
        const double hertz = (middle + 0.5) * rate / 128.0;
        const QString source = toneOverNoise(rate, hertz);
        QVERIFY(!source.isEmpty());
        const QString target = path(QStringLiteral("tone.m4a"));
        const std::optional<QString> failure = HeAacTest::write(
            source, target, FileType::appleM4A,
            HeAacTest::highEfficiency(AudioFormatId::mpeg4AACHighEfficiency, rate, 1, 32000));
        QVERIFY2(!failure, qPrintable(failure.value_or(QString())));
        const TestSupport::DecodedAudio original = Fixtures::decode(source);
        const TestSupport::DecodedAudio decoded = Fixtures::decode(target);
        const qint64 first = rate / 4;
        const std::vector<double> wanted =
            HeAacTest::spectrum(original, 0, first, original.frameCount() - rate / 4);
        const std::vector<double> got =
            HeAacTest::spectrum(decoded, 0, first, decoded.frameCount() - rate / 4);
        const double low = bands[band] * rate / 128.0;
        const double high = bands[band + 1] * rate / 128.0;
        // The tone's own bins against the whole band: a tone keeps nearly all the band's power
        // there, noise spreads it.
        const double toneWanted = HeAacTest::bandLevel(wanted, rate, hertz - 60.0, hertz + 60.0);
        const double toneGot = HeAacTest::bandLevel(got, rate, hertz - 60.0, hertz + 60.0);
        const double bandGot = HeAacTest::bandLevel(got, rate, low, high);
        qInfo("tone at %.0f Hz: source %.1f dB, decoded %.1f dB of a band of %.1f dB", hertz,
              toneWanted, toneGot, bandGot);
        QVERIFY2(bandGot - toneGot < 1.0, "the band's power is not in the tone");
        QVERIFY(std::abs(toneGot - toneWanted) <= 3.0);
    }

    // The measure: the mean absolute difference (dB) of third-octave band levels, 100 Hz to
    // 16 kHz, between source and decoded output, both channels. HE-AAC at 48 kbit/s must beat
    // AAC-LC at 64 kbit/s on it.
    void lowerRateThanLowComplexityForTheSameMeasure()
    {
        constexpr int rate = 48000;
        const QString source = chord(rate);
        QVERIFY(!source.isEmpty());
        const auto measure = [&](std::uint32_t formatId, int bitRate) {
            const QString target =
                path(QStringLiteral("measure-%1-%2.m4a").arg(formatId).arg(bitRate));
            const std::optional<QString> failure =
                HeAacTest::write(source, target, FileType::appleM4A,
                                 HeAacTest::highEfficiency(formatId, rate, 2, bitRate));
            if (failure)
                return 1e9;
            const TestSupport::DecodedAudio original = Fixtures::decode(source);
            const TestSupport::DecodedAudio decoded = Fixtures::decode(target);
            const qint64 end = std::min(original.frameCount(), decoded.frameCount()) - rate / 4;
            double sum = 0.0;
            int count = 0;
            for (int channel = 0; channel < 2; ++channel) {
                const std::vector<double> wanted =
                    HeAacTest::spectrum(original, channel, rate / 4, end);
                const std::vector<double> got =
                    HeAacTest::spectrum(decoded, channel, rate / 4, end);
                for (double low = 100.0; low * 1.26 <= 16000.0; low *= 1.26, ++count)
                    sum += std::abs(HeAacTest::bandLevel(got, rate, low, low * 1.26) -
                                    HeAacTest::bandLevel(wanted, rate, low, low * 1.26));
            }
            return sum / count;
        };
        const double highEfficiency = measure(AudioFormatId::mpeg4AACHighEfficiency, 48000);
        const double lowComplexity = measure(AudioFormatId::mpeg4AAC, 64000);
        qInfo("mean band-level error: HE-AAC 48 kbit/s %.2f dB, AAC-LC 64 kbit/s %.2f dB",
              highEfficiency, lowComplexity);
        QVERIFY(highEfficiency < lowComplexity);
    }
};

QTEST_GUILESS_MAIN(HeAacTests)
#include "tst_heaac.moc"
