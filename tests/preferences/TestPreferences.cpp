#include "preferences/Preferences.h"
#include "support/FakePreferenceStore.h"
#include <QMetaProperty>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestPreferences final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFreshStoreGivesTheDefaultsAndStaysEmpty()
    {
        FakePreferenceStore store;
        const Preferences preferences(store);
        QCOMPARE(preferences.leadTimeMinutes(), 5);
        QCOMPARE(preferences.screenPosition(), Preferences::ScreenPosition::TopRight);
        QCOMPARE(preferences.launchAtLogin(), true);
        QCOMPARE(preferences.playSoundOnAlert(), true);
        QCOMPARE(preferences.enableMeetControls(), false);
        QCOMPARE(preferences.popupWindowWidth(), 1300);
        QVERIFY(store.values.isEmpty());
    }

    void everyPropertyIsStoredUnderItsOwnKey()
    {
        FakePreferenceStore store;
        Preferences preferences(store);
        QStringList keys;
        for (int i = QObject::staticMetaObject.propertyCount(); i < preferences.metaObject()->propertyCount();
             ++i) {
            const QMetaProperty property = preferences.metaObject()->property(i);
            const QVariant value = property.metaType() == QMetaType::fromType<QString>() ? QVariant(u"text"_s)
                : property.metaType() == QMetaType::fromType<bool>()
                ? QVariant(!property.read(&preferences).toBool())
                : QVariant(qint64(-7));
            store.values.clear();
            QVERIFY(property.write(&preferences, value));
            QCOMPARE(store.values.size(), 1);
            QCOMPARE(property.read(&preferences), value);
            keys.append(store.values.firstKey());
            if (!keys.last().startsWith(u"hotkey."))
                QCOMPARE(keys.last(), QLatin1StringView(property.name()));
        }
        QCOMPARE(keys.size(), 36);
        keys.removeDuplicates();
        QCOMPARE(keys.size(), 36);
    }

    void everyActionsShortcutIsTheOneOfItsProperty()
    {
        FakePreferenceStore store;
        Preferences preferences(store);
        for (const HotkeyActionRow &action : hotkeyActions()) {
            QString name = action.rawValue;
            if (name == u"meetShareScreen")
                name = u"meetShare"_s;
            name[0] = name[0].toUpper();
            const QByteArray property = "hotkey" + name.toLatin1() + "Raw";
            preferences.setRawHotkey(action.rawValue, action.action);
            QCOMPARE(preferences.property(property).toString(), action.rawValue);
        }
    }

    void observersHearBeforeAndAfterEveryAssignment()
    {
        FakePreferenceStore store;
        Preferences preferences(store);
        QList<std::pair<QByteArray, qint64>> heard;
        connect(&preferences, &Preferences::willChange, this,
                [&] { heard.append({ "will", preferences.leadTimeMinutes() }); });
        connect(&preferences, &Preferences::changed, this,
                [&] { heard.append({ "did", preferences.leadTimeMinutes() }); });
        preferences.setLeadTimeMinutes(10);
        preferences.setLeadTimeMinutes(10);
        QCOMPARE(heard, (decltype(heard) { { "will", 5 }, { "did", 10 }, { "will", 10 }, { "did", 10 } }));
        QCOMPARE(store.writes, 2);
    }

    void aFailedWriteReadsAsBeforeAndIsAnnounced()
    {
        FakePreferenceStore store;
        store.failWrites = true;
        Preferences preferences(store);
        const QSignalSpy changed(&preferences, &Preferences::changed);
        preferences.setReduceTransparency(true);
        QCOMPARE(preferences.reduceTransparency(), false);
        QCOMPARE(changed.size(), 1); // so that a switch springs back
    }

    void anotherProcessesChangeIsAnnouncedOnce()
    {
        FakePreferenceStore store;
        const Preferences preferences(store);
        const QSignalSpy willChange(&preferences, &Preferences::willChange);
        const QSignalSpy changed(&preferences, &Preferences::changed);
        store.changeElsewhere(u"leadTimeMinutes"_s, qint64(15));
        QCOMPARE(preferences.leadTimeMinutes(), 15);
        QCOMPARE(changed.size(), 1);
        QCOMPARE(willChange.size(), 0);
    }

    void textThatNamesNoCaseFallsBackAndIsKept()
    {
        FakePreferenceStore store;
        const Preferences preferences(store);
        store.values = { { u"screenPositionRaw"_s, u"TOPleft"_s },
                         { u"alertSoundRaw"_s, u"ping"_s },
                         { u"languageOverrideRaw"_s, u"fr"_s } };
        const auto before = store.values;
        QCOMPARE(preferences.screenPosition(), Preferences::ScreenPosition::TopRight);
        QCOMPARE(preferences.alertSound(), Preferences::AlertSound::Glass);
        QCOMPARE(preferences.languageOverride(), Preferences::LanguageCode::System);
        QCOMPARE(store.values, before);
    }

    void theLanguageOverrideRulesTheLanguageList()
    {
        FakePreferenceStore store;
        Preferences preferences(store);
        QList<std::optional<QStringList>> lists;
        connect(&preferences, &Preferences::changed, this,
                [&] { lists.append(store.stringList(Preferences::languagesKey)); });
        preferences.setLanguageOverride(Preferences::LanguageCode::Es);
        preferences.setLanguageOverride(Preferences::LanguageCode::En);
        preferences.setLanguageOverride(Preferences::LanguageCode::System);
        // each is in place before observers hear of the change
        QCOMPARE(lists, (decltype(lists) { QStringList { u"es"_s }, QStringList { u"en"_s }, std::nullopt }));
        QCOMPARE(preferences.languageOverrideRaw(), u"system"_s);

        store.values.insert(u"languageOverrideRaw"_s, u"es"_s);
        preferences.applyLanguageOverride();
        QCOMPARE(store.stringList(Preferences::languagesKey), QStringList { u"es"_s });
    }

    void selectionsThatAreNoMapOfListsReadAsEmpty()
    {
        for (const auto &raw :
             { u""_s, u"{"_s, u"[]"_s, uR"({"a":["x"],"b":"y"})"_s, uR"({"a":["x",1]})"_s }) {
            FakePreferenceStore store;
            Preferences preferences(store);
            store.values.insert(u"selectedCalendarIDsByAccountRaw"_s, raw);
            QVERIFY(preferences.selectedCalendarIDs(u"a"_s).isEmpty());
            QCOMPARE(preferences.selectedCalendarIDsByAccountRaw(), raw);

            preferences.setSelectedCalendarIDs({ u"new"_s }, u"a"_s);
            QCOMPARE(preferences.selectedCalendarIDsByAccountRaw(), uR"({"a":["new"]})"_s);
        }
    }

    void selectionsAreKeptPerAccountInTheirOrder()
    {
        FakePreferenceStore store;
        Preferences preferences(store);
        const QStringList awkward { u"z@example.org"_s, u"a \"quoted\" \\ ünïcode 📅"_s, u"z@example.org"_s };
        preferences.setSelectedCalendarIDs(awkward, u"google.1"_s);
        preferences.setSelectedCalendarIDs({ u"primary"_s }, u"google.2"_s);
        QCOMPARE(preferences.selectedCalendarIDs(u"google.1"_s), awkward);
        QCOMPARE(preferences.selectedCalendarIDs(u"google.3"_s), QStringList());

        preferences.setSelectedCalendarIDs({}, u"google.1"_s);
        QCOMPARE(preferences.selectedCalendarIDsByAccountRaw(), uR"({"google.2":["primary"]})"_s);
    }

    void pruningDropsOtherAccountsAndWritesOnlyThen()
    {
        FakePreferenceStore store;
        Preferences preferences(store);
        preferences.setSelectedCalendarIDs({ u"x"_s }, u"a"_s);
        preferences.setSelectedCalendarIDs({ u"y"_s }, u"b"_s);
        store.writes = 0;
        preferences.pruneCalendarSelections({ u"a"_s, u"b"_s, u"c"_s });
        QCOMPARE(store.writes, 0);
        preferences.pruneCalendarSelections({ u"b"_s, u"c"_s });
        QCOMPARE(store.writes, 1);
        QCOMPARE(preferences.selectedCalendarIDsByAccount(),
                 (QMap<QString, QStringList> { { u"b"_s, { u"y"_s } } }));
    }

    void shortcutsFallBackToTheActionsDefault()
    {
        FakePreferenceStore store;
        Preferences preferences(store);
        constexpr auto action = HotkeyAction::meetLeave;
        const Hotkey fallback = row(action).defaultHotkey;
        QCOMPARE(preferences.hotkey(action), fallback);

        preferences.setHotkey({ 12, 4352 }, action);
        QCOMPARE(preferences.hotkeyMeetLeaveRaw(), uR"({"keyCode":12,"modifiers":4352})"_s);
        QCOMPARE(preferences.hotkey(action), (Hotkey { 12, 4352 }));

        preferences.setHotkey({}, action);
        QVERIFY(preferences.hotkey(action).isNone());

        preferences.setRawHotkey(u"ctrl+q"_s, action);
        QCOMPARE(preferences.hotkey(action), fallback);

        preferences.resetHotkey(action);
        QCOMPARE(store.string(u"hotkey.meet.leave"_s), QString());
        QCOMPARE(preferences.hotkey(action), fallback);
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestPreferences)
#include "TestPreferences.moc"
