#include "platform/linux/X11Struts.h"
#include <QTest>

using namespace kestrel;
using Edge = X11Strut::Edge;

/// Two monitors of 1920×1080 side by side, the right one hanging 200 lower.
class TestX11Struts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesFromTheMonitorThatThePanelIsOn_data()
    {
        QTest::addColumn<QList<X11Strut>>("struts");
        QTest::addColumn<QRect>("left");
        QTest::addColumn<QRect>("right");
        const QRect wholeLeft(0, 0, 1920, 1080);
        const QRect wholeRight(1920, 200, 1920, 1080);

        using Struts = QList<X11Strut>;
        QTest::newRow("none") << Struts {} << wholeLeft << wholeRight;
        QTest::newRow("top of the left one")
            << Struts { { Edge::Top, 28, 0, 1919 } } << QRect(0, 28, 1920, 1052) << wholeRight;
        QTest::newRow("top of the lower right one")
            << Struts { { Edge::Top, 228, 1920, 3839 } } << wholeLeft << QRect(1920, 228, 1920, 1052);
        QTest::newRow("bottom of the left one, which ends above the bottom of all")
            << Struts { { Edge::Bottom, 240, 0, 1919 } } << QRect(0, 0, 1920, 1040) << wholeRight;
        QTest::newRow("left edge of the right one")
            << Struts { { Edge::Left, 1970, 200, 1279 } } << wholeLeft << QRect(1970, 200, 1870, 1080);
        QTest::newRow("right edge of the left one")
            << Struts { { Edge::Right, 1980, 0, 1079 } } << QRect(0, 0, 1860, 1080) << wholeRight;
        QTest::newRow("panels on three sides") << Struts { { Edge::Top, 30, 0, 1919 },
                                                           { Edge::Top, 20, 0, 900 },
                                                           { Edge::Left, 60, 0, 1079 },
                                                           { Edge::Right, 50, 200, 1279 } }
                                               << QRect(60, 30, 1860, 1050) << QRect(1920, 200, 1870, 1080);
        QTest::newRow("absurd ones that would leave nothing")
            << Struts { { Edge::Top, 900, 0, 1919 }, { Edge::Bottom, 1000, 0, 1919 } } << wholeLeft
            << wholeRight;
    }

    void takesFromTheMonitorThatThePanelIsOn()
    {
        QFETCH(QList<X11Strut>, struts);
        QFETCH(QRect, left);
        QFETCH(QRect, right);
        constexpr QSize xScreen(3840, 1280);
        QCOMPARE(withoutStruts(QRect(0, 0, 1920, 1080), xScreen, struts), left);
        QCOMPARE(withoutStruts(QRect(1920, 200, 1920, 1080), xScreen, struts), right);
    }
};

QTEST_GUILESS_MAIN(TestX11Struts)
#include "TestX11Struts.moc"
