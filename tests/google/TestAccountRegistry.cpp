#include "google/AccountRegistry.h"
#include "support/FakePreferenceStore.h"
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QString key = u"registeredAccounts.v1"_s;

CalendarAccount makeAccount(const QString &id, const std::optional<QString> &email = u"ada@example.com"_s)
{
    CalendarAccount account;
    account.id = id;
    account.providerID = u"google"_s;
    account.email = email;
    account.displayName = u"Google Calendar"_s;
    account.meetLaunchMode = MeetLaunchMode::Popup;
    account.calendarColorOverrides = { { u"primary"_s, u"#102030"_s } };
    return account;
}

QByteArray record(const QByteArray &launchMode)
{
    return R"({"id":"B","providerID":"google","displayName":"B",)" + launchMode
        + R"("calendarColorOverrides":{}})";
}

} // namespace

class TestAccountRegistry : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void oneBadRecordLosesTheWholeList_data()
    {
        const QByteArray good = record(R"("meetLaunchMode":"tab",)");
        QTest::addColumn<QVariant>("stored");
        QTest::newRow("no launch mode") << QVariant('[' + good + ',' + record("") + ']');
        QTest::newRow("record is no object") << QVariant('[' + good + ",7]");
        QTest::newRow("no JSON") << QVariant(QByteArray("[{"));
    }

    void oneBadRecordLosesTheWholeList()
    {
        QFETCH(QVariant, stored);
        FakePreferenceStore store;
        store.values.insert(key, stored);

        AccountRegistry registry(store);
        QVERIFY(registry.accounts().isEmpty());
        QCOMPARE(store.values.value(key), stored);

        registry.add(makeAccount(u"A"_s));
        QCOMPARE(AccountRegistry(store).accounts(), QList { makeAccount(u"A"_s) });
    }

    void removeTakesEveryAccountOfTheIdentifier()
    {
        FakePreferenceStore store;
        AccountRegistry registry(store);
        for (const auto &id : { u"A"_s, u"B"_s, u"A"_s, u"C"_s })
            registry.add(makeAccount(id));
        registry.remove(u"A"_s);
        const QList expected { makeAccount(u"B"_s), makeAccount(u"C"_s) };
        QCOMPARE(registry.accounts(), expected);
        QCOMPARE(AccountRegistry(store).accounts(), expected);
    }

    void updateEditsTheFirstMatchOrNothing()
    {
        FakePreferenceStore store;
        AccountRegistry registry(store);
        registry.add(makeAccount(u"A"_s));
        registry.add(makeAccount(u"A"_s));
        const int writes = store.writes;

        registry.update(u"nobody"_s, [](CalendarAccount &) { QFAIL("there is nothing to edit"); });
        QCOMPARE(store.writes, writes);

        for (const auto &color : { u"#111111"_s, u"#222222"_s }) {
            registry.update(u"A"_s, [&](CalendarAccount &account) {
                account.calendarColorOverrides[u"primary"_s] = color;
            });
        }
        QCOMPARE(registry.account(u"A"_s)->calendarColorOverrides.value(u"primary"_s), u"#222222"_s);
        QCOMPARE(registry.accounts().at(1), makeAccount(u"A"_s));
    }

    void followsAnotherProcess_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QStringList>("ids");
        QTest::addColumn<int>("announcements");
        const QByteArray b = record(R"("meetLaunchMode":"tab",)");
        QTest::newRow("another account") << QByteArray('[' + b + ']') << QStringList { u"B"_s } << 1;
        QTest::newRow("unreadable: what is known stays") << QByteArray("[{") << QStringList { u"A"_s } << 0;
        QTest::newRow("the same list") << QByteArray() << QStringList { u"A"_s } << 0;
    }

    void followsAnotherProcess()
    {
        QFETCH(QByteArray, stored);
        QFETCH(QStringList, ids);
        QFETCH(int, announcements);
        FakePreferenceStore store;
        AccountRegistry registry(store);
        registry.add(makeAccount(u"A"_s));

        const QSignalSpy announced(&registry, &AccountRegistry::accountsChanged);
        const int writes = store.writes;
        store.changeElsewhere(key, stored.isNull() ? store.values.value(key) : QVariant(stored));
        QStringList found;
        for (const CalendarAccount &account : registry.accounts())
            found.append(account.id);
        QCOMPARE(found, ids);
        QCOMPARE(announced.count(), announcements);
        QCOMPARE(store.writes, writes);
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestAccountRegistry)
#include "TestAccountRegistry.moc"
