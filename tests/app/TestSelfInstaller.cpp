#include "app/SelfInstaller.h"
#include "base/Started.h"
#include "support/EnglishTexts.h"
#include "support/FakeHelperChannel.h"
#include "support/FakeModalNotice.h"
#include "support/FakePreferenceStore.h"
#include "support/Files.h"
#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

const auto declined = u"selfInstaller.userDeclined.v1"_s;
constexpr qsizetype notNow = 1;

using Answer = std::expected<HelperReply, HelperError>;

} // namespace

class TestSelfInstaller final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { makeBundle(u"media/stick/Kestrel"_s); }

    void init()
    {
        helper = std::make_unique<FakeHelperChannel>();
        notice = std::make_unique<FakeModalNotice>();
        store = std::make_unique<FakePreferenceStore>();
    }

    void offersOnlyWhereItDoesNotStay_data()
    {
        QTest::addColumn<QString>("bundle");
        QTest::addColumn<bool>("offers");
        QTest::newRow("stick") << u"media/stick/Kestrel"_s << true;
        QTest::newRow("image") << u"mount/.mount_Kes1/usr"_s << true;
        QTest::newRow("in the home") << u"media/home/Kestrel"_s << false;
        QTest::newRow("installed for everybody") << u"opt/kestrel"_s << false;
        QTest::newRow("like a stick's folder") << u"mediathek/Kestrel"_s << false;
        QTest::newRow("a build tree on a stick") << u"media/sources/build"_s << false;
    }
    void offersOnlyWhereItDoesNotStay()
    {
        QFETCH(QString, bundle);
        QFETCH(bool, offers);
        notice->answer = notNow;
        if (bundle != "media/sources/build"_L1)
            makeBundle(bundle);
        auto installer = make(bundle);
        QCOMPARE(*started(installer->offerIfNeeded()), false);
        QCOMPARE(notice->asked.size(), offers ? 1 : 0);
        QCOMPARE(store->boolean(declined).value_or(false), offers);
        QVERIFY(helper->installed.isEmpty());
    }

    void aFailureIsSaidAndTheStartGoesOn_data()
    {
        QTest::addColumn<Answer>("answer");
        QTest::addColumn<QString>("text");
        using Kind = HelperError::Kind;
        const auto row = [](const char *name, const Answer &answer, const char *text) {
            QTest::newRow(name) << answer << QString::fromLatin1(text);
        };
        row("its own text", HelperReply { false, u"The disk is full"_s }, "The disk is full");
        row("no text", HelperReply { false, {} }, "Unknown error");
        row("no helper", std::unexpected(HelperError { Kind::Missing, u"x"_s }),
            "The install helper isn't available.");
        row("another program", std::unexpected(HelperError { Kind::NotOurProtocol, u"x"_s }),
            "The install helper isn't available.");
        row("gone in the middle", std::unexpected(HelperError { Kind::Unreachable, u"it went"_s }),
            "D-Bus connection error: it went");
    }
    void aFailureIsSaidAndTheStartGoesOn()
    {
        QFETCH(Answer, answer);
        QFETCH(QString, text);
        helper->answer = answer;
        auto installer = make();
        QCOMPARE(*started(installer->offerIfNeeded()), false);
        QCOMPARE(notice->asked.size(), 2);
        QCOMPARE(notice->asked.last().text, text);
        QCOMPARE(notice->asked.last().buttons.size(), 1);
        QVERIFY2(!store->boolean(declined), "the next start offers it again");
    }

    void aLateAnswerChangesNothing()
    {
        helper->isHeld = true;
        auto installer = make(u"media/stick/Kestrel"_s, 0s);
        const auto leaves = started(installer->offerIfNeeded());
        QCOMPARE(*leaves, false);
        QCOMPARE(notice->asked.last().text, u"The install took too long and was cancelled."_s);
        helper->release();
        QCoreApplication::processEvents(); // delivers the answer
        QCOMPARE(*leaves, false);
        QCOMPARE(notice->asked.size(), 2);
    }

    void endingMeanwhileDeclinesNothing()
    {
        auto installer = make();
        notice->answer = notNow;
        notice->beforeAnswer = [&] { installer.reset(); };
        QCOMPARE(*started(installer->offerIfNeeded()), false);
        QVERIFY(!store->boolean(declined));
    }

private:
    void makeBundle(const QString &name)
    {
        writeFile(bundles.filePath(name) + u"/share/applications/app.kestrel.Kestrel.desktop"_s, {});
    }
    [[nodiscard]] QString stick() const { return bundles.filePath(u"media/stick/Kestrel"_s); }
    std::unique_ptr<SelfInstaller> make(const QString &bundle = u"media/stick/Kestrel"_s,
                                        std::chrono::milliseconds patience = 30s)
    {
        const InstallPlaces places { { bundles.filePath(u"media/"_s), bundles.filePath(u"mount/.mount_"_s) },
                                     bundles.filePath(u"media/home"_s),
                                     u"/there"_s,
                                     {},
                                     {} };
        return std::make_unique<SelfInstaller>(bundles.filePath(bundle), places, *notice, *helper, *store,
                                               patience);
    }

    EnglishTexts texts;
    QTemporaryDir bundles;
    std::unique_ptr<FakeHelperChannel> helper;
    std::unique_ptr<FakeModalNotice> notice;
    std::unique_ptr<FakePreferenceStore> store;
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestSelfInstaller)
#include "TestSelfInstaller.moc"
