// SPDX-License-Identifier: GPL-3.0-or-later
// Figures in names and texts keep a point as decimal mark when the user's locale writes a comma:
// the test builds a German locale of its own (localedef into a private LOCPATH) and runs again
// under it, where the C library's own printf would write "1,5".
#include "ConversionEngine/core/FixedDecimals.h"
#include "ConversionEngine/memory/MemoryManager.h"
#include "app/batch/BatchProgressManager.h"
#include "app/batch/ProgressTexts.h"
#include "app/naming/OutputNaming.h"
#include "app/window/ConversionControls.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>

using namespace Ondrilet;
using ConversionEngine::AudioLevelTarget;
using ConversionEngine::FixedDecimals;

namespace {

bool isChild()
{
    return qEnvironmentVariableIsSet("ONDRILET_COMMA_LOCALE_CHILD");
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
            char probe[16];
            std::snprintf(probe, sizeof probe, "%.1f", 1.5);
            QCOMPARE(QByteArray(probe), QByteArray("1,5")); // the comma locale is in effect
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
        QTemporaryDir locales;
        QVERIFY(locales.isValid());
        QProcess build;
        build.start(QStringLiteral("localedef"),
                    {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
                     QStringLiteral("UTF-8"), locales.filePath(QStringLiteral("de_DE.UTF-8"))});
        if (!build.waitForFinished(120000) || build.exitCode() != 0)
            QSKIP("localedef cannot build a German locale here");
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("ONDRILET_COMMA_LOCALE_CHILD"), QStringLiteral("1"));
        environment.insert(QStringLiteral("LOCPATH"), locales.path());
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(),
                    {QStringLiteral("figuresKeepAPointUnderACommaLocale")});
        QVERIFY(child.waitForFinished(60000));
        const QString output =
            QString::fromUtf8(child.readAllStandardOutput() + child.readAllStandardError());
        QVERIFY2(child.exitStatus() == QProcess::NormalExit && child.exitCode() == 0,
                 qPrintable(output));
    }
};

QTEST_GUILESS_MAIN(TestDecimalPoint)
#include "tst_decimalpoint.moc"
