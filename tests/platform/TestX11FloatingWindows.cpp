#include "platform/linux/DesktopScreens.h"
#include "platform/linux/X11FloatingWindows.h"
#include "support/Files.h"
#include "support/Person.h"
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QScreen>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

/// Plain colour, and a record of what reaches it.
class Sheet final : public QRasterWindow
{
public:
    Sheet(QRect place, QColor sheetColor)
        : color(sheetColor)
    {
        setGeometry(place);
    }

    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter(this).fillRect(QRect(QPoint(), size()), color);
    }
    void mousePressEvent(QMouseEvent * /*event*/) override
    {
        ++presses;
        if (focusGiver)
            focusGiver->takeFocus(*this);
    }
    void keyPressEvent(QKeyEvent *event) override { keys.append(event->key()); }

    QColor color;
    FloatingWindows *focusGiver = nullptr;
    int presses = 0;
    QList<int> keys;
};

/// What can be seen there, whoever draws it.
QColor seenAt(QPoint point)
{
    return QGuiApplication::primaryScreen()
        ->grabWindow(0, point.x(), point.y(), 1, 1)
        .toImage()
        .pixelColor(0, 0);
}

} // namespace

/// Real windows under a real window manager, and another program that the person works in.
class TestX11FloatingWindows final : public QObject
{
    Q_OBJECT

    static constexpr auto place = QRect(1000, 40, 300, 100);
    const QColor red { 200, 40, 40 };

    void startTerminal(QProcess &terminal, const QStringList &options, const QString &file)
    {
        terminal.start(u"xterm"_s,
                       QStringList { u"-bg"_s, u"#204060"_s, u"-T"_s, u"typed"_s } + options
                           + QStringList { u"-e"_s, u"cat > %1"_s.arg(file) });
        xdotool(u"search --sync --onlyvisible --name ^typed$ windowactivate --sync"_s);
        QTRY_VERIFY(QFile::exists(file));
    }

    /// With an input region that leaves the edges out.
    static void showOver(Sheet &below, Sheet &sheet, X11FloatingWindows &windows, FloatingWindows::Kind kind)
    {
        below.show();
        windows.prepare(sheet, kind);
        windows.setInputRegion(sheet, QRect(20, 20, 260, 60));
        sheet.show();
        windows.shown(sheet, kind);
        QTRY_COMPARE(seenAt(place.center()), sheet.color);
        QTRY_COMPARE(seenAt(place.topLeft() + QPoint(5, 5)), below.color); // no compositor: cut away
    }

    static void end(QProcess &process)
    {
        process.terminate();
        QVERIFY(process.waitForFinished());
    }

private Q_SLOTS:
    void aCardTakesTheKeyboardOnlyWhenClicked()
    {
        const QTemporaryDir folder;
        const QString typed = folder.filePath(u"typed"_s);
        QProcess terminal;
        startTerminal(terminal, {}, typed);
        X11FloatingWindows windows;
        Sheet card(place, red);
        card.focusGiver = &windows;
        windows.prepare(card, FloatingWindows::Kind::Card);

        xdotool(u"type before"_s);
        card.show();
        windows.shown(card, FloatingWindows::Kind::Card);
        QTRY_COMPARE(seenAt(place.center()), red);
        QCOMPARE(card.position(), place.topLeft());
        xdotool(u"type after"_s);
        xdotool(u"key Return"_s);
        QTRY_COMPARE(contentOf(typed), "beforeafter\n");
        QVERIFY(card.keys.isEmpty());

        xdotool(u"mousemove 1100 90 click 1"_s);
        QTRY_VERIFY(card.isActive());
        xdotool(u"key Escape"_s);
        QTRY_COMPARE(card.keys, QList<int> { Qt::Key_Escape });

        card.hide();
        xdotool(u"search --sync --name ^typed$ windowfocus --sync"_s);
        xdotool(u"type again"_s);
        xdotool(u"key Return"_s);
        QTRY_COMPARE(contentOf(typed), "beforeafter\nagain\n");
        end(terminal);
    }

    void cardsLieOverFullScreenWindows()
    {
        const QTemporaryDir folder;
        QProcess terminal;
        startTerminal(terminal, { u"-fullscreen"_s }, folder.filePath(u"typed"_s));
        QTRY_COMPARE(seenAt(place.center()), QColor(0x20, 0x40, 0x60));
        X11FloatingWindows windows;
        Sheet card(place, red);
        windows.prepare(card, FloatingWindows::Kind::Card);
        card.show();
        windows.shown(card, FloatingWindows::Kind::Card);
        QTRY_COMPARE(seenAt(place.center()), red);
        xdotool(u"mousemove 500 500 click 1"_s); // raises what is below
        xdotool(u"set_desktop 1"_s);
        QTRY_VERIFY(seenAt(QPoint(500, 500)) != QColor(0x20, 0x40, 0x60));
        QTRY_COMPARE(seenAt(place.center()), red);
        xdotool(u"set_desktop 0"_s);
        QTRY_COMPARE(seenAt(QPoint(500, 500)), QColor(0x20, 0x40, 0x60));
        QTRY_COMPARE(seenAt(place.center()), red);
        end(terminal);
    }

    void clicksOutsideTheInputRegionReachWhatIsBelow()
    {
        Sheet below(QRect(900, 20, 500, 300), Qt::white);
        Sheet card(place, red);
        X11FloatingWindows windows;
        showOver(below, card, windows, FloatingWindows::Kind::Card);

        QVERIFY(windows.canWatchPresses());
        QSignalSpy pressed(&windows, &FloatingWindows::pressed);
        windows.watchPresses(true);
        xdotool(u"mousemove 1005 45 click 1"_s);
        QTRY_COMPARE(below.presses, 1);
        xdotool(u"mousemove 1100 90 click 1"_s);
        QTRY_COMPARE(card.presses, 1);
        QCOMPARE(below.presses, 1);
        QTRY_COMPARE(pressed.size(), 2);
        QCOMPARE(pressed.last().first().toPoint(), QPoint(1100, 90));
        xdotool(u"click 4"_s); // the wheel
        windows.setInputRegion(card, {});
        xdotool(u"mousemove 1005 45 click 1"_s);
        QTRY_COMPARE(card.presses, 2);
        QTRY_COMPARE(pressed.size(), 3);
        windows.watchPresses(false);
        xdotool(u"click 1"_s);
        QTRY_COMPARE(card.presses, 3);
        QCOMPARE(pressed.size(), 3);
    }

    void theMouseGoesThroughAHud()
    {
        Sheet below(QRect(900, 20, 500, 300), Qt::white);
        Sheet hud(place, red);
        X11FloatingWindows windows;
        showOver(below, hud, windows, FloatingWindows::Kind::Hud);
        xdotool(u"mousemove 1100 90 click 1"_s);
        QTRY_COMPARE(below.presses, 1);
        QCOMPARE(hud.presses, 0);
    }

    void aPanelTakesItsStripOffTheVisibleFrame()
    {
        DesktopScreens screens;
        QSignalSpy changed(&screens, &Screens::changed);
        const auto whole = screens.mainFrame();
        QCOMPARE(screens.mainVisibleFrame(), whole);
        {
            Sheet panel(QRect(0, 0, 1600, 30), Qt::gray);
            panel.setFlags(Qt::FramelessWindowHint);
            panel.show();
            QVERIFY(QTest::qWaitForWindowExposed(&panel));
            QCOMPARE(QProcess::execute(u"xprop"_s,
                                       { u"-id"_s, QString::number(panel.winId()), u"-f"_s,
                                         u"_NET_WM_STRUT_PARTIAL"_s, u"32c"_s, u"-set"_s,
                                         u"_NET_WM_STRUT_PARTIAL"_s, u"0,0,30,0,0,0,0,0,0,1599,0,0"_s }),
                     0);
            QTRY_COMPARE(screens.mainVisibleFrame(), whole->adjusted(0, 30, 0, 0));
            QCOMPARE(screens.visibleFrameAt(QPoint(-500, 5000)), whole->adjusted(0, 30, 0, 0));
            QCOMPARE(screens.mainFrame(), whole);
        }
        QTRY_COMPARE(screens.mainVisibleFrame(), whole); // the panel died
        QCOMPARE(changed.size(), 2);
    }
};

QTEST_MAIN(TestX11FloatingWindows)
#include "TestX11FloatingWindows.moc"
