#include "base/Clock.h"
#include "support/EnglishTexts.h"
#include "support/FakeAppearance.h"
#include "support/WarningCount.h"
#include "ui/AttendeeModel.h"
#include "ui/Colors.h"
#include "ui/Countdown.h"
#include "ui/FlowRow.h"
#include "ui/QuickScene.h"
#include "ui/Symbols.h"
#include "ui/Theme.h"
#include <QQmlComponent>
#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// WCAG 2.1, "contrast ratio".
double contrast(const QColor &one, const QColor &other)
{
    const auto light = [](const QColor &color) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF())
            + 0.0722 * linear(color.blueF()) + 0.05;
    };
    const double ratio = light(one) / light(other);
    return std::max(ratio, 1 / ratio);
}

using Act = void (*)(QQuickView &view);

} // namespace

class TestElements final : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void everyNamedSymbolHasADrawing();
    void whatIsReadStandsOut_data();
    void whatIsReadStandsOut();
    void surfacesAreSolidWhereGlassIsNotAllowed_data();
    void surfacesAreSolidWhereGlassIsNotAllowed();
    void flowPlacesItsItems_data();
    void flowPlacesItsItems();
    void aPillCountsOnlyWhileItIsSeen();
    void aButtonGivesWayAndIsAsItWas();
    void whatIsAClick_data();
    void whatIsAClick();
    void aToolTipStaysInTheWindow();
    void chipsShowTheFirstAndThenAll();

private:
    FakeAppearance m_appearance;
    Theme m_theme { m_appearance };
    FixedClock m_clock { Instant(std::chrono::hours(24 * 365)) };
    std::optional<Countdown> m_countdown;
    QuickScene m_scene;
    EnglishTexts m_texts;
};

void TestElements::initTestCase()
{
    m_countdown.emplace(m_clock, m_clock.now() + std::chrono::minutes(5));
    // as a window of the program does; a file of the module alone does not register its types
    QQmlEngine engine;
    engine.addImportPath(u":/qt/qml"_s);
    QQmlComponent importing(&engine);
    importing.setData("import QtQml\nimport Kestrel.Ui\nQtObject {}", {});
    QVERIFY2(std::unique_ptr<QObject>(importing.create()), qPrintable(importing.errorString()));
}

void TestElements::everyNamedSymbolHasADrawing()
{
    for (const QString &name : { u"timer"_s, u"video.fill"_s, u"mappin.and.ellipse"_s, u"link"_s,
                                 u"chevron.forward.2"_s, u"arrow.uturn.backward"_s, u"gearshape"_s })
        QVERIFY2(symbolSvg(name).contains("<svg"), qPrintable(name));
    QVERIFY(applicationIconSvg().contains("<svg"));
    QCOMPARE(symbolSvg(u"no such"_s), QByteArray());
    QCOMPARE(symbolSvg({}), QByteArray());
}

void TestElements::whatIsReadStandsOut_data()
{
    QTest::addColumn<QByteArray>("ink");
    QTest::addColumn<QByteArray>("tint");
    QTest::addColumn<double>("atLeast");
    for (const char *ink : { "text", "secondaryText", "tertiaryText", "meetingNow", "meetingSoon",
                             "meetingLater", "success", "error" })
        QTest::addRow("%s on card and surface", ink) << QByteArray(ink) << QByteArray() << 4.5;
    for (const char *tint : { "meetingNow", "meetingSoon", "meetingLater", "accent" })
        QTest::addRow("text on glass with %s", tint) << QByteArray("text") << QByteArray(tint) << 4.5;
    QTest::addRow("accent, as a symbol") << QByteArray("accent") << QByteArray() << 3.0;
}

void TestElements::whatIsReadStandsOut()
{
    QFETCH(QByteArray, ink);
    QFETCH(QByteArray, tint);
    QFETCH(double, atLeast);
    const auto color = [this](const char *name) { return m_theme.property(name).value<QColor>(); };
    for (const bool dark : { false, true }) {
        m_appearance.dark = dark;
        for (const char *base : { "card", "surface" }) {
            const QColor ground = Colors().glass(color(base), color(tint), !tint.isEmpty(), false);
            const double ratio = contrast(color(ink), ground);
            QVERIFY2(ratio >= atLeast,
                     qPrintable(u"%1 on %2 %3"_s.arg(ratio).arg(QLatin1StringView(base)).arg(dark)));
        }
    }
    m_appearance.dark = false;
}

void TestElements::surfacesAreSolidWhereGlassIsNotAllowed_data()
{
    QTest::addColumn<bool>("composited");
    QTest::addColumn<bool>("desktopReduces");
    QTest::addColumn<bool>("personReduces");
    QTest::addColumn<bool>("isGlass");
    QTest::newRow("nothing against it") << true << false << false << true;
    QTest::newRow("no compositor") << false << false << false << false;
    QTest::newRow("the desktop reduces") << true << true << false << false;
    QTest::newRow("the person reduces") << true << false << true << false;
}

void TestElements::surfacesAreSolidWhereGlassIsNotAllowed()
{
    QFETCH(bool, composited);
    QFETCH(bool, desktopReduces);
    QFETCH(bool, personReduces);
    QFETCH(bool, isGlass);
    const auto view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Ui/GlassSurface.qml"_s), {});
    QVERIFY(view);
    m_appearance.composited = composited;
    m_appearance.lessTransparency = desktopReduces;
    m_theme.setReducesTransparency(personReduces);
    Q_EMIT m_appearance.changed();
    QCOMPARE(view->rootObject()->property("color").value<QColor>().alpha() < 255, isGlass);
    m_appearance.composited = false;
    m_appearance.lessTransparency = false;
    m_theme.setReducesTransparency(false);
}

void TestElements::flowPlacesItsItems_data()
{
    QTest::addColumn<QList<QSizeF>>("items");
    QTest::addColumn<QList<QPointF>>("places");
    QTest::addColumn<double>("height");
    using Sizes = QList<QSizeF>;
    using Points = QList<QPointF>;
    QTest::newRow("none") << Sizes {} << Points {} << 0.0;
    QTest::newRow("up to the edge") << Sizes { { 40, 10 }, { 56, 20 } } << Points { { 0, 0 }, { 44, 0 } }
                                    << 20.0;
    QTest::newRow("the highest of a line counts")
        << Sizes { { 40, 30 }, { 50, 10 }, { 20, 10 } } << Points { { 0, 0 }, { 44, 0 }, { 0, 34 } } << 44.0;
    QTest::newRow("the first wider than the row")
        << Sizes { { 120, 10 }, { 30, 10 } } << Points { { 0, 4 }, { 0, 18 } } << 28.0;
}

void TestElements::flowPlacesItsItems()
{
    QFETCH(QList<QSizeF>, items);
    QFETCH(QList<QPointF>, places);
    QFETCH(double, height);
    FlowRow row;
    row.setSpacing(4);
    for (const QSizeF &size : items) {
        auto *item = new QQuickItem(&row);
        item->setSize(size);
    }
    QQuickItem repeater(&row);
    row.setWidth(100);
    for (qsizetype i = 0; i < places.size(); ++i)
        QCOMPARE(row.childItems().at(i)->position(), places.at(i));
    QCOMPARE(row.implicitHeight(), height);
}

void TestElements::aPillCountsOnlyWhileItIsSeen()
{
    auto view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Ui/CountdownPill.qml"_s),
                                 { { u"countdown"_s, QVariant::fromValue(&*m_countdown) } });
    QVERIFY(view && !m_countdown->isRunning());
    view->show();
    QVERIFY(m_countdown->isRunning());
    view->hide();
    QVERIFY(!m_countdown->isRunning());
    view->show();
    view.reset();
    QVERIFY(!m_countdown->isRunning());
}

void TestElements::aButtonGivesWayAndIsAsItWas()
{
    const WarningCount warnings;
    m_appearance.lessMotion = true;
    Q_EMIT m_appearance.changed();
    const auto view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Ui/IconButton.qml"_s),
                                       { { u"symbol"_s, u"gearshape"_s }, { u"toolTip"_s, u"Settings"_s } });
    QVERIFY(view);
    view->setPosition(100, 100); // not under the pointer
    view->show();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
    QQuickItem &button = *view->rootObject();
    const auto made = [&button](const char *name) { return button.property(name).value<QObject *>(); };
    const qsizetype children = button.childItems().size();
    QVERIFY(!made("overlay") && !made("bubble"));

    button.forceActiveFocus(Qt::TabFocusReason);
    QVERIFY(made("overlay") && made("bubble"));
    QCOMPARE(button.scale(), 1.0);
    button.setFocus(false, Qt::TabFocusReason);
    QVERIFY(!made("overlay") && !made("bubble"));
    for (int press = 0; press < 2; ++press) {
        QTest::mousePress(view.get(), Qt::LeftButton, {}, { 5, 5 });
        QVERIFY(made("overlay"));
        QCOMPARE(button.scale(), 0.97);
        QTest::mouseRelease(view.get(), Qt::LeftButton, {}, { 5, 5 });
        QVERIFY(!made("overlay"));
        QCOMPARE(button.scale(), 1.0);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(button.childItems().size(), children);
    QCOMPARE(WarningCount::seen, 0);
    m_appearance.lessMotion = false;
    Q_EMIT m_appearance.changed();
}

void TestElements::whatIsAClick_data()
{
    QTest::addColumn<Act>("act");
    QTest::addColumn<int>("clicks");
    const auto row = [](const char *name, Act act, int clicks) { QTest::newRow(name) << act << clicks; };
    static constexpr QPoint inside { 5, 5 };
    static constexpr QPoint outside { 150, 90 };
    row(
        "press and release", [](QQuickView &view) { QTest::mouseClick(&view, Qt::LeftButton, {}, inside); },
        1);
    row(
        "twice",
        [](QQuickView &view) {
            QTest::mouseClick(&view, Qt::LeftButton, {}, inside);
            QTest::mouseDClick(&view, Qt::LeftButton, {}, inside); // the second click of a double one
        },
        3);
    row("another button", [](QQuickView &view) { QTest::mouseClick(&view, Qt::RightButton, {}, inside); }, 0);
    row(
        "let go elsewhere",
        [](QQuickView &view) {
            QTest::mousePress(&view, Qt::LeftButton, {}, inside);
            QTest::mouseMove(&view, outside);
            QVERIFY(!view.rootObject()->property("pressed").toBool());
            QTest::mouseRelease(&view, Qt::LeftButton, {}, outside);
        },
        0);
    row(
        "away and back",
        [](QQuickView &view) {
            QTest::mousePress(&view, Qt::LeftButton, {}, inside);
            QTest::mouseMove(&view, outside);
            QTest::mouseMove(&view, inside);
            QTest::mouseRelease(&view, Qt::LeftButton, {}, inside);
        },
        1);
    row(
        "the pointer is taken away",
        [](QQuickView &view) {
            QTest::mousePress(&view, Qt::LeftButton, {}, inside);
            view.rootObject()->ungrabMouse();
            QTest::mouseRelease(&view, Qt::LeftButton, {}, inside);
        },
        0);
    row(
        "a disabled one",
        [](QQuickView &view) {
            view.rootObject()->setEnabled(false);
            QTest::mouseClick(&view, Qt::LeftButton, {}, inside);
            QMetaObject::invokeMethod(view.rootObject(), "accessiblePressAction");
        },
        0);
    row("Space", [](QQuickView &view) { QTest::keyClick(&view, Qt::Key_Space); }, 1);
    row(
        "Space, and away",
        [](QQuickView &view) {
            QTest::keyPress(&view, Qt::Key_Space);
            view.rootObject()->setFocus(false);
            view.rootObject()->setFocus(true);
            QTest::keyRelease(&view, Qt::Key_Space);
        },
        0);
    row("Enter", [](QQuickView &view) { QTest::keyClick(&view, Qt::Key_Return); }, 1);
    row(
        "a screen reader's press",
        [](QQuickView &view) { QMetaObject::invokeMethod(view.rootObject(), "accessiblePressAction"); }, 1);
}

void TestElements::whatIsAClick()
{
    QFETCH(Act, act);
    QFETCH(int, clicks);
    const auto view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Ui/IconButton.qml"_s),
                                       { { u"symbol"_s, u"gearshape"_s } });
    QVERIFY(view);
    view->show();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
    view->resize(200, 100);
    view->rootObject()->forceActiveFocus();
    const QSignalSpy clicked(view->rootObject(), SIGNAL(clicked()));
    act(*view);
    QCOMPARE(clicked.size(), clicks);
    QVERIFY(!view->rootObject()->property("pressed").toBool());
}

void TestElements::aToolTipStaysInTheWindow()
{
    const QString words(60, u'w');
    const auto view = m_scene.makeView(QUrl(u"qrc:/qt/qml/Kestrel/Ui/IconButton.qml"_s),
                                       { { u"symbol"_s, u"gearshape"_s }, { u"toolTip"_s, words } });
    QVERIFY(view);
    view->setPosition(100, 100); // not under the pointer
    view->show();
    QVERIFY(QTest::qWaitForWindowActive(view.get()));
    view->resize(200, 100);
    for (const QPointF place : { QPointF(0, 0), QPointF(170, 70) }) {
        view->rootObject()->setPosition(place);
        view->rootObject()->forceActiveFocus(Qt::TabFocusReason);
        auto *const bubble = view->rootObject()->property("bubble").value<QQuickItem *>();
        QVERIFY(bubble);
        QVERIFY(!bubble->isVisible());
        QVERIFY(QMetaObject::invokeMethod(bubble, "appear"));
        QVERIFY(bubble->isVisible());
        const QRectF covered = bubble->mapRectToScene(bubble->boundingRect());
        QVERIFY2(QRectF(0, 0, 200, 100).contains(covered), qPrintable(QDebug::toString(covered)));
        QVERIFY(!covered.intersects(view->rootObject()->mapRectToScene(view->rootObject()->boundingRect())));
        view->rootObject()->setFocus(false, Qt::TabFocusReason);
    }
}

void TestElements::chipsShowTheFirstAndThenAll()
{
    AttendeeModel model(2);
    model.setAttendees({ Attendee { u"1"_s, {}, {} }, Attendee { u"2"_s, {}, {} } });
    QCOMPARE(model.hiddenText(), QString());
    model.setAttendees(
        { Attendee { u"1"_s, {}, {} }, Attendee { u"2"_s, {}, {} }, Attendee { u"3"_s, {}, {} } });
    QCOMPARE(model.rowCount(), 2);
    QCOMPARE(model.hiddenText(), u"+1"_s);
    model.expand();
    QCOMPARE(model.rowCount(), 3);
    QCOMPARE(model.hiddenText(), QString());
}

} // namespace kestrel

QTEST_MAIN(kestrel::TestElements)
#include "TestElements.moc"
