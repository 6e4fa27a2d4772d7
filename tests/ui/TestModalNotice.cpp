#include "base/StartTask.h"
#include "support/FakeAppearance.h"
#include "support/FakeFloatingWindows.h"
#include "support/FakeScreens.h"
#include "support/WarningCount.h"
#include "ui/QuickModalNotice.h"
#include "ui/QuickScene.h"
#include "ui/Theme.h"
#include <QAccessible>
#include <QQuickItem>
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

QCoro::Task<void> ask(ModalNotice &notice, ModalNotice::Message message, QList<qsizetype> &answers)
{
    answers.append(co_await notice.ask(message));
}

const ModalNotice::Message twoButtons { u"Move?"_s,
                                        u"<b>Kestrel</b> can move."_s,
                                        { u"Move"_s, u"Not now"_s } };

struct Desk
{
    void start(const ModalNotice::Message &message = twoButtons)
    {
        startTask("notice", ask(*notice, message, answers));
    }

    QList<qsizetype> answers; // what is unanswered at the end still writes here
    FakeAppearance appearance;
    Theme theme { appearance };
    QuickScene scene;
    FakeFloatingWindows windows;
    FakeScreens screens;
    std::unique_ptr<QuickModalNotice> notice =
        std::make_unique<QuickModalNotice>(scene, windows, screens, theme);
};

} // namespace

class TestModalNotice final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void keysAnswer_data()
    {
        QTest::addColumn<QList<Qt::Key>>("keys");
        QTest::addColumn<qsizetype>("answer");
        using Keys = QList<Qt::Key>;
        QTest::newRow("Return") << Keys { Qt::Key_Return } << qsizetype(0);
        QTest::newRow("Enter") << Keys { Qt::Key_Enter } << qsizetype(0);
        QTest::newRow("Space") << Keys { Qt::Key_Space } << qsizetype(0);
        QTest::newRow("Escape") << Keys { Qt::Key_Escape } << qsizetype(1);
        QTest::newRow("Tab, Return") << Keys { Qt::Key_Tab, Qt::Key_Return } << qsizetype(1);
        QTest::newRow("Tab, Space") << Keys { Qt::Key_Tab, Qt::Key_Space } << qsizetype(1);
        QTest::newRow("round") << Keys { Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Return } << qsizetype(0);
    }

    void keysAnswer()
    {
        QFETCH(QList<Qt::Key>, keys);
        QFETCH(qsizetype, answer);
        const WarningCount warnings;
        Desk desk;
        desk.start();
        QVERIFY(desk.answers.isEmpty());
        QTRY_VERIFY(desk.notice->view()->isActive());
        for (const Qt::Key key : keys)
            QTest::keyClick(desk.notice->view(), key);
        QTRY_COMPARE(desk.answers, QList<qsizetype> { answer });
        QVERIFY(!desk.notice->view());
        QCOMPARE(WarningCount::seen, 0);
    }

    void oneAfterTheOther()
    {
        Desk desk;
        desk.start();
        desk.start({ u"Second"_s, {}, { u"OK"_s } });
        QCOMPARE(desk.windows.shownWindows.size(), 1);
        QCOMPARE(desk.notice->title(), u"Move?"_s);
        desk.notice->choose(0);
        desk.notice->choose(1); // a second click before it is gone
        QTRY_COMPARE(desk.notice->title(), u"Second"_s);
        QCOMPARE(desk.answers, QList<qsizetype>({ 0 }));
        QVERIFY(desk.notice->view()->isVisible());
        desk.notice->view()->close();
        QTRY_COMPARE(desk.answers, QList<qsizetype>({ 0, 0 }));
    }

    void allAreAnsweredAtTheEnd()
    {
        Desk desk;
        desk.start();
        desk.start({ u"Second"_s, {}, { u"A"_s, u"B"_s, u"C"_s } });
        desk.notice.reset();
        QCOMPARE(desk.answers, QList<qsizetype>({ 1, 2 }));
    }

    void withoutAScreenItIsTheLastButton()
    {
        Desk desk;
        desk.screens.setScreens({});
        desk.start();
        QCOMPARE(desk.answers, QList<qsizetype> { 1 });
    }

    void itFitsOnTheScreen_data()
    {
        QTest::addColumn<int>("words");
        QTest::newRow("a few words") << 5;
        QTest::newRow("more than there is room for") << 2000;
    }

    void itFitsOnTheScreen()
    {
        QFETCH(int, words);
        Desk desk;
        desk.screens.setFrames(QRect(0, 0, 1000, 600), QRect(0, 40, 1000, 560));
        desk.start({ u"Kestrel"_s, u"word "_s.repeated(words), { u"Move"_s, u"Not now"_s } });
        QTRY_VERIFY(desk.notice->view()->isExposed());
        const QQuickItem &root = *desk.notice->view()->rootObject();
        const QRect body = root.property("body").toRectF().toRect();
        const QRect shown = body.translated(desk.notice->view()->position());
        QVERIFY2(desk.screens.screens.first().visibleFrame.contains(shown),
                 qPrintable(QDebug::toString(shown)));
        QVERIFY(qAbs((shown.center() - desk.screens.screens.first().visibleFrame.center()).manhattanLength())
                <= 2);
        QCOMPARE(desk.windows.inputRegions.value(desk.notice->view()).boundingRect(), body);
    }
};

} // namespace kestrel

QTEST_MAIN(kestrel::TestModalNotice)
#include "TestModalNotice.moc"
