// SPDX-License-Identifier: GPL-3.0-or-later
// The manual's sections and pages, the sidebar's filter, the rich text of the topics, and the
// notification that turns the window to a section.
#include "app/help/HelpModel.h"

#include <QSignalSpy>
#include <QTest>

using namespace Ondrilet;

class HelpModelTest : public QObject
{
    Q_OBJECT

private slots:
    void sectionsInOrderWithTheirLabels();
    void emptySearchListsEverySection();
    void searchMatchingNothingLeavesTheSidebarEmpty();
    void capitalsFindALowerCaseLabel();
    void onlyLabelsAreSearched();
    void everyPageHasTitleIntroductionAndTopics();
    void pagesHoldTheirTexts();
    void boldMarkupBecomesRichText();
    void notificationTurnsToItsSection();
};

void HelpModelTest::sectionsInOrderWithTheirLabels()
{
    QStringList labels;
    for (HelpSection section : allHelpSections())
        labels << label(section);
    QCOMPARE(labels, (QStringList{"Getting Started", "Audio Conversion", "Video Conversion",
                                  "Presets", "Audio Level Processing", "Metadata Editor",
                                  "Settings", "Troubleshooting", "Technical Details"}));
}

void HelpModelTest::emptySearchListsEverySection()
{
    HelpModel model;
    QCOMPARE(model.visibleSections().size(), 9);
    QCOMPARE(model.visibleSections().first(), HelpSection::gettingStarted);
}

void HelpModelTest::searchMatchingNothingLeavesTheSidebarEmpty()
{
    HelpModel model;
    model.setSearchText(QStringLiteral("zebra"));
    QVERIFY(model.visibleSections().isEmpty());
}

void HelpModelTest::capitalsFindALowerCaseLabel()
{
    HelpModel model;
    model.setSearchText(QStringLiteral("CONVERSION"));
    QCOMPARE(model.visibleSections(),
             (QList<HelpSection>{HelpSection::audioConversion, HelpSection::videoConversion}));
    model.setSearchText(QStringLiteral("LEVEL"));
    QCOMPARE(model.visibleSections(), QList<HelpSection>{HelpSection::audioLevelProcessing});
}

void HelpModelTest::onlyLabelsAreSearched()
{
    // "YADIF" stands in a topic text of Technical Details, not in any label.
    QVERIFY(helpPage(HelpSection::technicalDetails).topics.at(3).text.contains("YADIF"));
    QVERIFY(HelpModel::sectionsMatching(QStringLiteral("YADIF")).isEmpty());
    QVERIFY(HelpModel::sectionsMatching(QStringLiteral("Welcome")).isEmpty());
}

void HelpModelTest::everyPageHasTitleIntroductionAndTopics()
{
    const QList<int> topicCounts{3, 3, 7, 4, 5, 5, 4, 4, 6};
    for (HelpSection section : allHelpSections()) {
        const HelpPage page = helpPage(section);
        QVERIFY(!page.title.isEmpty());
        QVERIFY(!page.introduction.isEmpty());
        QCOMPARE(page.topics.size(), topicCounts.at(int(section)));
        for (const HelpTopic& topic : page.topics) {
            QVERIFY(!topic.heading.isEmpty());
            QVERIFY(!topic.text.isEmpty());
        }
    }
}

void HelpModelTest::pagesHoldTheirTexts()
{
    const HelpPage start = helpPage(HelpSection::gettingStarted);
    QCOMPARE(start.title, QStringLiteral("Welcome to Ondrilet"));
    QCOMPARE(start.introduction, QStringLiteral("Professional media conversion for macOS"));
    QCOMPARE(start.topics.first().heading, QStringLiteral("Quick Start"));
    QVERIFY(start.topics.first().text.contains(
        QStringLiteral("\n• Click \"Convert\" to start processing\n")));
    const HelpPage trouble = helpPage(HelpSection::troubleshooting);
    QCOMPARE(trouble.title, QStringLiteral("Common Issues"));
    QCOMPARE(trouble.topics.last().heading, QStringLiteral("File Access Issues"));
    const HelpPage presets = helpPage(HelpSection::presets);
    QVERIFY(presets.topics.last().text.startsWith(
        QStringLiteral("Access via: App Menu → Preset Manager (⌘⇧P)\n\nFeatures:\n")));
    QCOMPARE(helpPage(HelpSection::settings).title, QStringLiteral("Application Settings"));
    QCOMPARE(helpPage(HelpSection::technicalDetails).title,
             QStringLiteral("Technical Information"));
}

void HelpModelTest::boldMarkupBecomesRichText()
{
    QCOMPARE(HelpModel::richText(QStringLiteral("**Title:** Track <title>\n• one")),
             QStringLiteral("<b>Title:</b> Track &lt;title&gt;<br>• one"));
    QCOMPARE(HelpModel::richText(QStringLiteral("a ** b")), QStringLiteral("a ** b"));
    for (HelpSection section : allHelpSections())
        for (const HelpTopic& topic : helpPage(section).topics)
            QVERIFY2(!HelpModel::richText(topic.text).contains(QStringLiteral("**")),
                     qPrintable(topic.heading));
}

void HelpModelTest::notificationTurnsToItsSection()
{
    HelpModel first;
    HelpModel second;
    QSignalSpy spy(&first, &HelpModel::selectedSectionChanged);
    HelpModel::postSectionChange(HelpSection::troubleshooting);
    QVERIFY(spy.wait(2000));
    QCOMPARE(first.selectedSection(), HelpSection::troubleshooting);
    QCOMPARE(second.selectedSection(), HelpSection::troubleshooting);
}

QTEST_GUILESS_MAIN(HelpModelTest)
#include "tst_helpmodel.moc"
