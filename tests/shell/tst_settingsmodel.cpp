// SPDX-License-Identifier: GPL-3.0-or-later
// The Settings window's stored values and when its theme is applied, and the About texts.
#include "app/shell/AboutInfo.h"
#include "app/shell/SettingsModel.h"
#include "platform/foundation/UserDefaults.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Ondrilet;

class SettingsModelTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void appearanceDefaultsToSystem();
    void unknownStoredAppearanceCountsAsSystem();
    void pickingAThemeStoresItsRawValueAndAppliesIt();
    void storedThemeIsAppliedOnlyWhenTheWindowAppears();
    void defaultDirectoryIsTheDesktopWhileUnset();
    void choosingADirectoryStoresItsPath();
    void aboutTexts();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Platform::UserDefaults> m_defaults;
};

void SettingsModelTest::init()
{
    m_defaults.reset();
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_defaults = std::make_unique<Platform::UserDefaults>(m_dir->filePath("prefs.conf"));
}

void SettingsModelTest::appearanceDefaultsToSystem()
{
    SettingsModel model(m_defaults.get());
    QCOMPARE(model.appearanceMode(), AppearanceMode::system);
    QStringList raws;
    for (AppearanceMode mode : allAppearanceModes())
        raws << rawValue(mode);
    QCOMPARE(raws, (QStringList{"System", "Light", "Dark"}));
}

void SettingsModelTest::unknownStoredAppearanceCountsAsSystem()
{
    m_defaults->setString(SettingsModel::appearanceModeKey, QStringLiteral("Sepia"));
    SettingsModel model(m_defaults.get());
    QCOMPARE(model.appearanceMode(), AppearanceMode::system);
    QSignalSpy applied(&model, &SettingsModel::applyAppearance);
    model.windowAppeared();
    QCOMPARE(applied.size(), 1);
    QCOMPARE(applied.first().first().toString(), QStringLiteral("System"));
}

void SettingsModelTest::pickingAThemeStoresItsRawValueAndAppliesIt()
{
    SettingsModel model(m_defaults.get());
    QSignalSpy applied(&model, &SettingsModel::applyAppearance);
    model.setAppearanceMode(AppearanceMode::dark);
    QCOMPARE(m_defaults->string(SettingsModel::appearanceModeKey), QStringLiteral("Dark"));
    QCOMPARE(applied.size(), 1);
    QCOMPARE(applied.first().first().toString(), QStringLiteral("Dark"));
    QCOMPARE(model.appearanceMode(), AppearanceMode::dark);
}

void SettingsModelTest::storedThemeIsAppliedOnlyWhenTheWindowAppears()
{
    m_defaults->setString(SettingsModel::appearanceModeKey, QStringLiteral("Dark"));
    SettingsModel model(m_defaults.get());
    QSignalSpy applied(&model, &SettingsModel::applyAppearance);
    QCOMPARE(applied.size(), 0);
    model.windowAppeared();
    QCOMPARE(applied.size(), 1);
    QCOMPARE(applied.first().first().toString(), QStringLiteral("Dark"));
}

void SettingsModelTest::defaultDirectoryIsTheDesktopWhileUnset()
{
    SettingsModel model(m_defaults.get());
    QCOMPARE(model.defaultOutputDirectoryPath(), QDir::homePath() + QStringLiteral("/Desktop"));
    QVERIFY(!m_defaults->contains(SettingsModel::defaultOutputDirectoryPathKey));
}

void SettingsModelTest::choosingADirectoryStoresItsPath()
{
    SettingsModel model(m_defaults.get());
    QSignalSpy changed(&model, &SettingsModel::defaultOutputDirectoryPathChanged);
    model.chooseDefaultOutputDirectory(m_dir->path());
    QCOMPARE(changed.size(), 1);
    QCOMPARE(m_defaults->string(SettingsModel::defaultOutputDirectoryPathKey), m_dir->path());
    QCOMPARE(model.defaultOutputDirectoryPath(), m_dir->path());
    model.chooseDefaultOutputDirectory(QString()); // a cancelled panel
    QCOMPARE(model.defaultOutputDirectoryPath(), m_dir->path());
}

void SettingsModelTest::aboutTexts()
{
    QCOMPARE(AboutInfo::versionText(QStringLiteral("1.0"), QString()), QStringLiteral("v1.0"));
    QCOMPARE(AboutInfo::versionText(QStringLiteral("1.0"), QStringLiteral("1.0")),
             QStringLiteral("v1.0"));
    QCOMPARE(AboutInfo::versionText(QStringLiteral("1.0"), QStringLiteral("42")),
             QStringLiteral("v1.0 (42)"));
    QCOMPARE(AboutInfo::versionText(QString(), QString()), QStringLiteral("v"));
    QCOMPARE(AboutInfo::name(QString(), QString()), QStringLiteral("Ondrilet"));
    QCOMPARE(AboutInfo::name(QString(), QStringLiteral("Plain")), QStringLiteral("Plain"));
    QCOMPARE(AboutInfo::name(QStringLiteral("Shown"), QStringLiteral("Plain")),
             QStringLiteral("Shown"));
    QCOMPARE(AboutInfo::copyrightText(2026, AboutInfo::companyName),
             QStringLiteral("© 2026 Valdrick Works"));
}

QTEST_GUILESS_MAIN(SettingsModelTest)
#include "tst_settingsmodel.moc"
