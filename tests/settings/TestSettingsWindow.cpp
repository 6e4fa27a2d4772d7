#include "settings/SettingsDesk.h"
#include <QAccessible>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickView>
#include <QSignalSpy>
#include <QTest>
#include <algorithm>

using namespace kestrel;
using namespace Qt::StringLiterals;
using Tab = SettingsModel::Tab;

namespace {

QQuickView *shownView()
{
    QQuickView *found = nullptr;
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible())
            found = qobject_cast<QQuickView *>(window);
    }
    return found;
}

void settle()
{
    for (int turn = 0; turn < 30; ++turn)
        QCoreApplication::processEvents();
}

QList<QQuickItem *> visibleItems(QQuickItem *parent)
{
    QList<QQuickItem *> items;
    for (QQuickItem *child : parent->childItems()) {
        if (child->isVisible())
            items << child << visibleItems(child);
    }
    return items;
}

QAccessibleInterface *spoken(QQuickItem *item)
{
    return QAccessible::queryAccessibleInterface(item);
}

QString nameOf(QQuickItem *item)
{
    const auto *interface = item ? spoken(item) : nullptr;
    return interface ? interface->text(QAccessible::Name) : QString();
}

void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
{
    QTest::keyClick(shownView(), key, modifiers);
    settle();
}

} // namespace

class TestSettingsWindow final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        QTest::failOnWarning(QRegularExpression(u"qrc:|QString::arg|QQml"_s));
        QAccessible::setActive(true);
    }
    void everyTabIsDrawnWhole_data();
    void everyTabIsDrawnWhole();
    void theKeyboardLeavesAMenuAndChoosesASound();
    void tabsAreTurnedFromAnywhere();
    void aNewLanguageShowsAtOnce();
    void aNumberIsTyped();
    void smallScreensScroll();
    void aCalendarTurnedOffTurnsOnAgain();
    void itIsAnOrdinaryWindow();
};

void TestSettingsWindow::everyTabIsDrawnWhole_data()
{
    QTest::addColumn<Tab>("tab");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("accounts");
    const auto tabs = QMetaEnum::fromType<Tab>();
    for (const QString &language : { u"en"_s, u"es"_s }) {
        for (int index = 0; index < tabs.keyCount(); ++index)
            QTest::addRow("%s in %s", tabs.key(index), qPrintable(language))
                << static_cast<Tab>(index) << language << QStringList { u"A"_s, u"B"_s };
    }
    QTest::newRow("no account") << Tab::Accounts << u"en"_s << QStringList();
}

void TestSettingsWindow::everyTabIsDrawnWhole()
{
    QFETCH(Tab, tab);
    QFETCH(QString, language);
    QFETCH(QStringList, accounts);
    SettingsDesk desk(accounts, language);
    desk.screens.setFrames({ 0, 0, 3840, 2160 }, { 0, 0, 3840, 2160 });
    desk.browser.current = { { u"Google Chrome"_s, u"Chromium"_s }, true, { u"Chromium"_s }, true };
    desk.window.show(tab);
    if (!accounts.isEmpty())
        desk.item(0)->setProperty("calendarsExpanded", true);
    desk.settings.meetings()->popupWidth()->enter(u"wide"_s);
    settle();
    QTRY_VERIFY(accounts.isEmpty() || tab != Tab::Accounts || desk.item(0)->calendars()->rowCount() == 3);
    settle();

    const QQuickView *view = shownView();
    const QQuickItem *root = view->rootObject();
    QCOMPARE(view->size(), QSizeF(root->implicitWidth(), root->implicitHeight()).toSize());
    int texts = 0;
    for (const QQuickItem *item : visibleItems(view->rootObject())) {
        if (!item->inherits("QQuickText"))
            continue;
        ++texts;
        const QRectF place = item->mapRectToScene({ 0, 0, item->width(), item->height() });
        const QString text = item->property("text").toString();
        QVERIFY2(!item->property("truncated").toBool(), qPrintable(text));
        QVERIFY2(item->width() + 1 >= item->property("contentWidth").toReal(), qPrintable(text));
        QVERIFY2(QRectF(QPointF(), view->size()).contains(place), qPrintable(text));
    }
    QVERIFY(texts > 6);
    for (const bool dark : { true, false }) {
        desk.appearance.dark = dark;
        Q_EMIT desk.appearance.changed();
        QVERIFY(!shownView()->grabWindow().isNull());
    }
}

void TestSettingsWindow::theKeyboardLeavesAMenuAndChoosesASound()
{
    SettingsDesk desk;
    desk.window.show(Tab::General);
    QVERIFY(QTest::qWaitForWindowActive(shownView()));
    for (int times = 0; times < 4; ++times)
        press(Qt::Key_Tab);
    press(Qt::Key_Space);
    press(Qt::Key_Escape); // closes the menu alone
    QVERIFY(desk.window.isShown());

    desk.window.show(Tab::Notifications);
    settle();
    for (int times = 0; times < 12 && nameOf(shownView()->activeFocusItem()) != u"Glass"_s; ++times)
        press(Qt::Key_Tab);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Up);
    QCOMPARE(desk.sounds.played, (QStringList { u"Ping"_s, u"Hero"_s, u"Ping"_s }));
    QCOMPARE(desk.preferences.alertSoundRaw(), u"Ping"_s);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    QCOMPARE(desk.sounds.played.size(), 4);

    press(Qt::Key_Escape);
    QVERIFY(!desk.window.isShown());
}

void TestSettingsWindow::tabsAreTurnedFromAnywhere()
{
    SettingsDesk desk;
    desk.window.show(Tab::Notifications);
    QVERIFY(QTest::qWaitForWindowActive(shownView()));
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(desk.settings.tab(), Tab::About);
    press(Qt::Key_PageDown, Qt::ControlModifier);
    QCOMPARE(desk.settings.tab(), Tab::General);
    press(Qt::Key_PageUp, Qt::ControlModifier);
    QCOMPARE(desk.settings.tab(), Tab::About);
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(desk.settings.tab(), Tab::Notifications);
    press(Qt::Key_Right);
    press(Qt::Key_Left);
    QCOMPARE(desk.settings.tab(), Tab::Notifications);
    QCOMPARE(nameOf(shownView()->activeFocusItem()), u"Notifications"_s);
}

void TestSettingsWindow::aNewLanguageShowsAtOnce()
{
    SettingsDesk desk;
    desk.window.show(Tab::Appearance);
    QVERIFY(QTest::qWaitForWindowActive(shownView()));
    // as app/ does
    connect(&desk.preferences, &Preferences::changed, &desk.window, [&desk] {
        desk.speak(desk.preferences.languageOverrideRaw() == u"es"_s ? u"es"_s : u"en"_s);
        desk.window.retranslate();
    });
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    QCOMPARE(desk.preferences.languageOverrideRaw(), u"es"_s);
    QCOMPARE(shownView()->title(), u"Ajustes de Kestrel"_s);
    const QQuickItem *picker = shownView()->activeFocusItem();
    QCOMPARE(picker->property("displayText"), u"Español"_s);
    QCOMPARE(desk.settings.appearance()->sample()->title(), u"Planificación semanal"_s);
    press(Qt::Key_Up);
    QCOMPARE(desk.preferences.languageOverrideRaw(), u"en"_s);
    QCOMPARE(picker->property("displayText"), u"English"_s);
}

void TestSettingsWindow::aNumberIsTyped()
{
    SettingsDesk desk;
    desk.window.show(Tab::Meetings);
    QVERIFY(QTest::qWaitForWindowActive(shownView()));
    const QList<QQuickItem *> items = visibleItems(shownView()->rootObject());
    const auto found = std::ranges::find_if(items, [](QQuickItem *item) {
        return item->inherits("QQuickTextField") && nameOf(item) == u"Width"_s;
    });
    QVERIFY(found != items.end());
    QQuickItem *field = *found;
    const auto type = [&](const char *text) {
        field->forceActiveFocus(Qt::TabFocusReason);
        press(Qt::Key_A, Qt::ControlModifier);
        for (; *text; ++text)
            QTest::keyClick(shownView(), *text);
    };
    type("0");
    press(Qt::Key_Tab);
    QCOMPARE(desk.preferences.popupWindowWidth(), 1300);
    QCOMPARE(field->property("text"), u"0"_s);
    QVERIFY(!desk.settings.meetings()->popupWidth()->error().isEmpty());
    desk.settings.meetings()->resetPopupSize();
    QCOMPARE(field->property("text"), u"1300"_s);

    type("7x");
    press(Qt::Key_Escape);
    QVERIFY(desk.window.isShown());
    QCOMPARE(field->property("text"), u"1300"_s);
    press(Qt::Key_Escape);
    QVERIFY(!desk.window.isShown());
}

void TestSettingsWindow::smallScreensScroll()
{
    SettingsDesk desk;
    const QRect frame(0, 28, 800, 472);
    desk.screens.setFrames({ 0, 0, 800, 500 }, frame);
    desk.window.show(Tab::Meetings);
    QVERIFY(QTest::qWaitForWindowActive(shownView()));
    QVERIFY(frame.contains(shownView()->geometry()));
    QCOMPARE(shownView()->minimumSize(), shownView()->size());
    for (int times = 0; times < 60 && nameOf(shownView()->activeFocusItem()) != u"Reset size"_s; ++times)
        press(Qt::Key_Tab);
    const QQuickItem *last = shownView()->activeFocusItem();
    QCOMPARE(nameOf(shownView()->activeFocusItem()), u"Reset size"_s);
    QVERIFY(QRectF(QPointF(), shownView()->size())
                .contains(last->mapRectToScene({ 0, 0, last->width(), last->height() })));

    desk.window.show(Tab::About);
    settle();
    QVERIFY(shownView()->height() < 400);
}

void TestSettingsWindow::aCalendarTurnedOffTurnsOnAgain()
{
    SettingsDesk desk({ u"A"_s });
    desk.window.show(Tab::Accounts);
    QVERIFY(QTest::qWaitForWindowActive(shownView()));
    desk.item(0)->setProperty("calendarsExpanded", true);
    QTRY_COMPARE(desk.item(0)->calendars()->rowCount(), 3);
    settle();
    for (int times = 0; times < 12 && nameOf(shownView()->activeFocusItem()) != u"Ann"_s; ++times)
        press(Qt::Key_Tab);
    const QQuickItem *primary = shownView()->activeFocusItem();
    QVERIFY(primary->property("checked").toBool());
    press(Qt::Key_Space); // nothing else is selected: this one is read all the same
    QVERIFY(primary->property("checked").toBool());
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Space);
    QCOMPARE(desk.preferences.selectedCalendarIDs(u"A"_s), (QStringList { u"ann@example.com"_s, u"team"_s }));
    QVERIFY2(shownView()->activeFocusItem()->property("checked").toBool(), "and the keyboard stays on it");
    const int unfolded = shownView()->height();
    desk.item(0)->setProperty("calendarsExpanded", false);
    settle();
    QTRY_VERIFY2(shownView()->height() < unfolded - 100, "what is folded leaves no gap");
}

void TestSettingsWindow::itIsAnOrdinaryWindow()
{
    SettingsDesk desk;
    desk.screens.setFrames({ 0, 0, 1280, 800 }, { 0, 30, 1280, 770 });
    desk.window.show();
    QQuickView *view = shownView();
    QCOMPARE(view->type(), Qt::Window);
    QCOMPARE(view->title(), u"Kestrel Settings"_s);
    QVERIFY(!view->icon().isNull());
    QCOMPARE(view->geometry().center(), QRect(0, 30, 1280, 770).center());
    desk.settings.setTab(Tab::About);
    QTest::qWait(0);
    view->close();
    QVERIFY(!desk.window.isShown());
    settle();
    QVERIFY(!shownView());

    desk.window.show();
    QVERIFY(shownView());
    QCOMPARE(desk.settings.tab(), Tab::About);
    desk.screens.setFrames({}, {});
    desk.window.close();
    desk.window.show();
    QVERIFY(!desk.window.isShown());
}

QTEST_MAIN(TestSettingsWindow)
#include "TestSettingsWindow.moc"
