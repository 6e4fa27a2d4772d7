#include "auth/PlayedBrowser.h"
#include "settings/SettingsDesk.h"
#include <QSignalSpy>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

class TestSettingsModels final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void aCardsTimeIsSteppedWithinItsBounds_data();
    void aCardsTimeIsSteppedWithinItsBounds();
    void pickersStandOnWhatIsStored();
    void startingWithTheSessionReachesTheDesktop();
    void aSoundIsHeardOnceItIsChosen();
    void onlySensibleNumbersAreTaken_data();
    void onlySensibleNumbersAreTaken();
    void theWindowsSizeGoesBack();
    void shortcutsAreRecordedAndGoBack();
    void sameKeysOfTwoActionsAreSaid();
    void aCalendarIsSwitched_data();
    void aCalendarIsSwitched();
    void calendarsAreColoured();
    void calendarsThatCannotBeReadSayWhy();
    void rowsStayAsLongAsTheirAccounts();
    void anAccountThatCannotBeAddedOrRemovedSaysWhy();
    void anEndedSignInIsRenewed();
    void whatCannotBeSavedIsSaid();
    void theBrowsersStateIsASentence_data();
    void theBrowsersStateIsASentence();
    void theBrowserIsAskedOnlyWhileItIsSeen();
};

void TestSettingsModels::aCardsTimeIsSteppedWithinItsBounds_data()
{
    QTest::addColumn<qint64>("stored");
    QTest::addColumn<int>("step");
    QTest::addColumn<qint64>("expected");
    QTest::addColumn<QString>("text");
    QTest::newRow("up") << 25LL << 5 << 30LL << u"30s"_s;
    QTest::newRow("down to none") << 5LL << -5 << 0LL << u"Until dismissed"_s;
    QTest::newRow("not below none") << 0LL << -5 << 0LL << u"Until dismissed"_s;
    QTest::newRow("not beyond two minutes") << 120LL << 5 << 120LL << u"120s"_s;
    QTest::newRow("between the steps") << 118LL << 5 << 120LL << u"120s"_s;
    QTest::newRow("what somebody wrote into the file") << 9000LL << -5 << 120LL << u"120s"_s;
    QTest::newRow("nonsense in the file") << -7LL << 5 << 5LL << u"5s"_s;
}

void TestSettingsModels::aCardsTimeIsSteppedWithinItsBounds()
{
    QFETCH(qint64, stored);
    QFETCH(int, step);
    SettingsDesk desk;
    desk.preferences.setAutoDismissSeconds(stored);
    GeneralSettings &general = *desk.settings.general();
    general.setAutoDismissSeconds(general.autoDismissSeconds() + step);
    QTEST(desk.preferences.autoDismissSeconds(), "expected");
    QTEST(general.autoDismissText(), "text");
}

void TestSettingsModels::pickersStandOnWhatIsStored()
{
    SettingsDesk desk;
    GeneralSettings &general = *desk.settings.general();
    QCOMPARE(general.leadTimes().value(general.leadTime()), u"5 min"_s);
    general.setLeadTime(3);
    QCOMPARE(desk.preferences.leadTimeMinutes(), 15);
    desk.preferences.setLeadTimeMinutes(7);
    QCOMPARE(general.leadTime(), -1);

    QCOMPARE(general.positions().value(general.position()), u"Top right"_s);
    for (int index = 0; index < general.positions().size(); ++index) {
        general.setPosition(index);
        QCOMPARE(general.position(), index);
    }
    QCOMPARE(desk.preferences.screenPositionRaw(), u"bottomRight"_s);

    AppearanceSettings &appearance = *desk.settings.appearance();
    appearance.setLanguage(2);
    QCOMPARE(desk.store.stringList(u"AppleLanguages"_s), QStringList { u"es"_s });
    appearance.setLanguage(0);
    QVERIFY(!desk.store.stringList(u"AppleLanguages"_s));
}

void TestSettingsModels::startingWithTheSessionReachesTheDesktop()
{
    SettingsDesk desk;
    GeneralSettings &general = *desk.settings.general();
    general.setLaunchAtLogin(false);
    QCOMPARE(desk.loginItem.isEnabled, false);
    desk.loginItem.failure = u"no folder"_s;
    general.setLaunchAtLogin(true);
    QCOMPARE(desk.loginItem.isEnabled, true);
    QVERIFY(general.launchAtLogin());
}

void TestSettingsModels::aSoundIsHeardOnceItIsChosen()
{
    SettingsDesk desk;
    NotificationSettings &notifications = *desk.settings.notifications();
    notifications.play(4);
    QCOMPARE(desk.preferences.alertSoundRaw(), u"Glass"_s);
    notifications.choose(2);
    QCOMPARE(notifications.sounds().value(notifications.sound()), u"Hero"_s);
    QCOMPARE(desk.preferences.alertSoundRaw(), u"Hero"_s);
    QCOMPARE(desk.sounds.played, (QStringList { u"Tink"_s, u"Hero"_s }));
}

void TestSettingsModels::onlySensibleNumbersAreTaken_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<qint64>("stored");
    QTest::addColumn<bool>("isRefused");
    QTest::newRow("a number") << u"1024"_s << 1024LL << false;
    QTest::newRow("blanks around it") << u" 1024 "_s << 1024LL << false;
    QTest::newRow("smallest") << u"1"_s << 1LL << false;
    QTest::newRow("largest") << u"16384"_s << 16384LL << false;
    for (const QString &typed :
         { u""_s, u"0"_s, u"-5"_s, u"16385"_s, u"99999999999999999999"_s, u"12.5"_s, u"wide"_s, u"0x40"_s })
        QTest::addRow("\"%s\"", qPrintable(typed)) << typed << 1300LL << true;
}

void TestSettingsModels::onlySensibleNumbersAreTaken()
{
    QFETCH(QString, typed);
    QFETCH(bool, isRefused);
    SettingsDesk desk;
    IntegerEntry &width = *desk.settings.meetings()->popupWidth();
    width.check(typed);
    QCOMPARE(!width.error().isEmpty(), isRefused);
    QCOMPARE(desk.preferences.popupWindowWidth(), 1300);
    width.enter(typed);
    QTEST(desk.preferences.popupWindowWidth(), "stored");
    QCOMPARE(!width.error().isEmpty(), isRefused);
    QVERIFY(!isRefused || (width.error().contains(u"1 "_s) && width.error().contains(u"16384"_s)));
}

void TestSettingsModels::theWindowsSizeGoesBack()
{
    SettingsDesk desk;
    MeetingsSettings &meetings = *desk.settings.meetings();
    meetings.popupWidth()->enter(u"640"_s);
    meetings.popupHeight()->enter(u"480"_s);
    meetings.popupHeight()->enter(u"none"_s);
    meetings.resetPopupSize();
    QCOMPARE(meetings.popupWidth()->text(), u"1300"_s);
    QCOMPARE(meetings.popupHeight()->text(), u"800"_s);
    QCOMPARE(meetings.popupHeight()->error(), QString());
}

void TestSettingsModels::shortcutsAreRecordedAndGoBack()
{
    SettingsDesk desk;
    QList<ShortcutItem *> items { desk.settings.meetings()->joinShortcut() };
    for (QObject *item : desk.settings.meetings()->meetShortcuts())
        items.append(qobject_cast<ShortcutItem *>(item));
    QSet<QString> labels;
    for (const ShortcutItem *item : items)
        labels.insert(item->label());
    QCOMPARE(labels.size(), 17);

    ShortcutItem &mute = *items.at(1);
    const Hotkey byDefault = mute.recorder()->hotkey();
    QCOMPARE(byDefault, row(HotkeyAction::meetMute).defaultHotkey);
    mute.recorder()->tap();
    desk.keyMonitor.type(40, Modifier::Command | Modifier::Shift);
    QCOMPARE(desk.preferences.hotkey(HotkeyAction::meetMute),
             (Hotkey { 40, Modifier::Command | Modifier::Shift }));
    mute.recorder()->tap();
    desk.keyMonitor.type(51, 0); // Delete
    QVERIFY(desk.preferences.hotkey(HotkeyAction::meetMute).isNone());
    QVERIFY(mute.recorder()->keyCaps().isEmpty());
    mute.reset();
    QCOMPARE(mute.recorder()->hotkey(), byDefault);
    QCOMPARE(desk.preferences.hotkeyMeetMuteRaw(), QString());
}

void TestSettingsModels::sameKeysOfTwoActionsAreSaid()
{
    SettingsDesk desk;
    ShortcutItem &join = *desk.settings.meetings()->joinShortcut();
    ShortcutItem &mute = *qobject_cast<ShortcutItem *>(desk.settings.meetings()->meetShortcuts().first());
    desk.preferences.setEnableMeetControls(true);
    desk.preferences.setHotkey(desk.preferences.hotkey(HotkeyAction::join), HotkeyAction::meetMute);
    QVERIFY2(mute.error().isEmpty(), "joining is not by keys yet");
    const QSignalSpy changes(&mute, &ShortcutItem::changed);
    desk.preferences.setEnableJoinShortcut(true);
    QVERIFY(!changes.isEmpty());
    QVERIFY(mute.error().contains(join.label()));
    QVERIFY(join.error().contains(mute.label()));
    mute.reset();
    QCOMPARE(mute.error() + join.error(), QString());
    for (const HotkeyAction action : { HotkeyAction::join, HotkeyAction::meetMute })
        desk.preferences.setHotkey({}, action);
    QCOMPARE(mute.error() + join.error(), QString());
}

void TestSettingsModels::aCalendarIsSwitched_data()
{
    QTest::addColumn<QStringList>("stored");
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("selected");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QString>("shown"); // a letter a switch
    const QString primary = u"ann@example.com"_s;
    using List = QStringList;
    QTest::newRow("another beside the primary one, which was read all the time")
        << List() << 1 << true << List { primary, u"team"_s } << u"110"_s;
    QTest::newRow("the same with the primary one under its other name")
        << List { u"primary"_s } << 1 << true << List { primary, u"team"_s } << u"110"_s;
    QTest::newRow("the primary one goes")
        << List { primary, u"team"_s } << 0 << false << List { u"team"_s } << u"010"_s;
    QTest::newRow("the last one goes: the primary one is read again")
        << List { u"team"_s } << 1 << false << List() << u"100"_s;
    QTest::newRow("the primary one alone cannot go") << List() << 0 << false << List() << u"100"_s;
    QTest::newRow("one that is no longer listed stays")
        << List { u"gone"_s, u"team"_s } << 2 << true << List { u"gone"_s, u"team"_s, u"leave"_s }
        << u"011"_s;
}

void TestSettingsModels::aCalendarIsSwitched()
{
    QFETCH(QStringList, stored);
    QFETCH(int, row);
    QFETCH(bool, selected);
    SettingsDesk desk({ u"A"_s });
    desk.preferences.setSelectedCalendarIDs(stored, u"A"_s);
    AccountItem &item = *desk.item(0);
    item.load();
    QTRY_COMPARE(item.calendarsTitle(), u"Calendars (3)"_s);

    item.select(row, selected);
    QTEST(desk.preferences.selectedCalendarIDs(u"A"_s), "expected");
    QString shown;
    for (int each = 0; each < item.calendars()->rowCount(); ++each)
        shown += item.calendars()->isSelected(item.calendars()->calendars().at(each)) ? u'1' : u'0';
    QTEST(shown, "shown");
    QCOMPARE(desk.refreshControl.started, 1);
}

void TestSettingsModels::calendarsAreColoured()
{
    SettingsDesk desk({ u"A"_s });
    AccountItem &item = *desk.item(0);
    item.load();
    QTRY_COMPARE(item.calendars()->rowCount(), 3);
    const auto overrideHex = [&] {
        return item.calendars()->index(1).data(static_cast<int>(CalendarChoices::Role::OverrideHex));
    };
    item.setColor(1, u"#28A66E"_s);
    QCOMPARE(overrideHex(), u"#28A66E"_s);
    QCOMPARE(desk.registry.account(u"A"_s)->calendarColorOverrides.value(u"team"_s), u"#28A66E"_s);
    item.setColor(1, {});
    QVERIFY(desk.registry.account(u"A"_s)->calendarColorOverrides.isEmpty());
    QCOMPARE(overrideHex(), QString());
}

void TestSettingsModels::calendarsThatCannotBeReadSayWhy()
{
    SettingsDesk desk({ u"A"_s });
    const QString path = u"/calendar/v3/users/me/calendarList"_s;
    AccountItem &item = *desk.item(0);
    item.load();
    QVERIFY(item.isLoading());
    QTRY_VERIFY(!item.isLoading());
    desk.google.transport.answer(path, 403, "quota");
    item.load(); // which still gets the answer of before
    QTRY_VERIFY(!item.isLoading());
    QCOMPARE(item.loadError(), QString());
    item.load();
    QTRY_VERIFY(!item.isLoading());
    QVERIFY2(item.loadError().contains(u"403"_s), qPrintable(item.loadError()));
    QCOMPARE(item.calendars()->rowCount(), 3);
}

void TestSettingsModels::rowsStayAsLongAsTheirAccounts()
{
    SettingsDesk desk({ u"A"_s, u"B"_s, u"C"_s });
    AccountsModel &accounts = *desk.settings.accounts();
    QSignalSpy resets(&accounts, &QAbstractItemModel::modelReset);
    QSignalSpy inserted(&accounts, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&accounts, &QAbstractItemModel::rowsRemoved);
    const QList<AccountItem *> items { desk.item(0), desk.item(1), desk.item(2) };

    desk.item(1)->setLaunchMode(0);
    QCOMPARE(desk.registry.account(u"B"_s)->meetLaunchMode, MeetLaunchMode::Tab);
    QCOMPARE(desk.item(1)->launchMode(), 0);
    QCOMPARE(inserted.size() + removed.size() + resets.size(), 0);

    items.at(1)->signOut();
    QTRY_COMPARE(accounts.rowCount(), 2);
    desk.registry.add(desk.account(u"D"_s));
    QCOMPARE(accounts.rowCount(), 3);
    QCOMPARE(desk.item(0), items.at(0));
    QCOMPARE(desk.item(1), items.at(2));
    QCOMPARE(desk.item(2)->name(), u"d@example.com"_s);
    QCOMPARE(inserted.size(), 1);
    QCOMPARE(removed.size(), 1);
}

void TestSettingsModels::anAccountThatCannotBeAddedOrRemovedSaysWhy()
{
    SettingsDesk desk({ u"A"_s });
    AccountsModel &accounts = *desk.settings.accounts();
    desk.google.opener.succeeds = false; // no browser
    accounts.addGoogle();
    QTRY_VERIFY(!accounts.isBusy());
    QVERIFY(!accounts.error().isEmpty());
    QCOMPARE(accounts.rowCount(), 1);

    desk.google.opener.succeeds = true; // a browser that nobody answers in
    accounts.addGoogle();
    QVERIFY(accounts.isBusy());
    QCOMPARE(accounts.error(), QString());
    QTRY_COMPARE(desk.google.opener.opened.size(), 2);
    accounts.addGoogle();
    FakeGoogle::settle();
    QCOMPARE(desk.google.opener.opened.size(), 2);

    desk.google.secrets.failures.insert(u"remove"_s, SecretStatus::Failed);
    desk.item(0)->signOut();
    QTRY_VERIFY(!desk.item(0)->isSigningOut());
    QVERIFY(!desk.item(0)->signOutError().isEmpty());
    QCOMPARE(accounts.rowCount(), 1);
}

void TestSettingsModels::anEndedSignInIsRenewed()
{
    SettingsDesk desk({ u"A"_s });
    FakeGoogle::settle();
    AccountItem &item = *desk.item(0);
    QVERIFY(!item.isSignedOut());
    // one after the other, and the last one from then on
    auto &transport = desk.google.transport;
    transport.answer(u"/token"_s, 400, R"({"error":"invalid_grant"})");
    transport.answer(u"/token"_s, 200,
                     R"({"access_token":"access","refresh_token":"refresh","expires_in":3600})");
    transport.answer(u"/v1/userinfo"_s, 200, R"({"email":"casey@example.com"})");
    transport.answer(u"/v1/userinfo"_s, 200, R"({"email":"A@example.com"})");
    QVERIFY(!QCoro::waitFor(desk.provider.oauth(u"A"_s).refreshAccessToken()));
    QVERIFY(item.isSignedOut());

    desk.google.opener.onOpen = [](const QUrl &url) { comeBack(url, u"?code=a-code&state=STATE"_s); };
    const auto signInAgain = [&item] {
        item.signInAgain();
        return QTest::qWaitFor([&item] { return !item.isSigningIn(); });
    };
    QVERIFY(signInAgain());
    QVERIFY2(item.signInError().contains(u"casey@example.com"), qPrintable(item.signInError()));
    QVERIFY(item.isSignedOut());
    QVERIFY(signInAgain());
    QCOMPARE(item.signInError(), QString());
    QVERIFY(!item.isSignedOut());
}

void TestSettingsModels::whatCannotBeSavedIsSaid()
{
    SettingsDesk desk;
    QSignalSpy changed(&desk.settings, &SettingsModel::unsavedTextChanged);
    desk.store.failWrites = true;
    desk.preferences.setLeadTimeMinutes(10);
    desk.preferences.setLeadTimeMinutes(15);
    QCOMPARE(changed.size(), 1);
    QVERIFY(desk.settings.unsavedText().startsWith(u"/home/ann/kestrel.ini could not be written"));
    desk.store.failWrites = false;
    desk.preferences.setLeadTimeMinutes(10);
    QCOMPARE(changed.size(), 2);
    QCOMPARE(desk.settings.unsavedText(), QString());
}

void TestSettingsModels::theBrowsersStateIsASentence_data()
{
    QTest::addColumn<BrowserConnectionState>("state");
    QTest::addColumn<QString>("says");
    QTest::addColumn<bool>("isConnected");
    QTest::addColumn<bool>("canInstall");
    const QStringList two { u"Google Chrome"_s, u"Chromium"_s };
    const auto add = [](const char *name, const BrowserConnectionState &state, const char *says,
                        bool connected, bool canInstall) {
        QTest::newRow(name) << state << QString::fromLatin1(says) << connected << canInstall;
    };
    add("none", {}, "was found", false, false);
    add("found", { two, false, {}, false }, "drive calls in Google Chrome", false, true);
    add("installed", { two, true, {}, false }, "Waiting for Google Chrome", false, true);
    add("connected", { two, true, { u"Chromium"_s }, false }, "Connected with Chromium.", true, false);
    add("the switch is off", { two, true, { u"Chromium"_s }, true }, "is off", false, false);
}

void TestSettingsModels::theBrowsersStateIsASentence()
{
    QFETCH(BrowserConnectionState, state);
    QFETCH(QString, says);
    SettingsDesk desk;
    desk.browser.current = state;
    BrowserStatus &browser = *desk.settings.meetings()->browser();
    QCOMPARE(browser.text(), QString());
    browser.setActive(true);
    QTRY_VERIFY(!browser.text().isEmpty());
    QVERIFY2(browser.text().contains(says), qPrintable(browser.text()));
    QTEST(browser.isConnected(), "isConnected");
    QTEST(browser.canInstall(), "canInstall");
}

void TestSettingsModels::theBrowserIsAskedOnlyWhileItIsSeen()
{
    SettingsDesk desk;
    desk.browser.current = { { u"Chromium"_s }, false, {}, false };
    desk.browser.answer = u"/home/ann/extension"_s;
    BrowserStatus &browser = *desk.settings.meetings()->browser();
    QCOMPARE(desk.browser.asked, 0);
    browser.setActive(true);
    QTRY_VERIFY(browser.canInstall());
    browser.install();
    QTRY_VERIFY(browser.steps().contains(u"/home/ann/extension"_s));
    QCOMPARE(browser.steps().count(u'\n'), 2);
    QVERIFY2(desk.browser.asked >= 2, "what the installation changed is seen at once");

    desk.browser.answer = std::unexpected(u"The disk is full"_s);
    browser.install();
    QTRY_COMPARE(browser.error(), u"The disk is full"_s);
    QCOMPARE(browser.text(), u"No browser is connected. Kestrel can drive calls in Chromium."_s);
    browser.setActive(false);
    QVERIFY(!browser.isActive());
}

QTEST_MAIN(TestSettingsModels)
#include "TestSettingsModels.moc"
