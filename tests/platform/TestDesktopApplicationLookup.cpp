#include "platform/linux/DesktopApplicationLookup.h"
#include "support/Files.h"
#include <QTemporaryDir>
#include <QTest>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

constexpr auto plain = "[Desktop Entry]\nName=Browser\nExec=browser %U\n";

} // namespace

class TestDesktopApplicationLookup final : public QObject
{
    Q_OBJECT

    using Files = QMap<QString, QByteArray>;

private Q_SLOTS:
    void findsTheInstalledFile_data()
    {
        QTest::addColumn<Files>("files");
        QTest::addColumn<QString>("bundleIdentifier");
        QTest::addColumn<QString>("found");

        QTest::newRow("native") << Files { { u"system/google-chrome.desktop"_s, plain } }
                                << u"com.google.Chrome"_s << u"system/google-chrome.desktop"_s;
        QTest::newRow("canary is unstable")
            << Files { { u"system/google-chrome-unstable.desktop"_s, plain } }
            << u"com.google.Chrome.canary"_s << u"system/google-chrome-unstable.desktop"_s;
        QTest::newRow("snap") << Files { { u"extra/chromium_chromium.desktop"_s, plain } }
                              << u"org.chromium.Chromium"_s << u"extra/chromium_chromium.desktop"_s;
        QTest::newRow("native before Flatpak, whichever folder comes first")
            << Files { { u"own/com.microsoft.Edge.desktop"_s, plain },
                       { u"extra/microsoft-edge.desktop"_s, plain } }
            << u"com.microsoft.edgemac"_s << u"extra/microsoft-edge.desktop"_s;
        QTest::newRow("the person's own folder first")
            << Files { { u"own/brave-browser.desktop"_s, plain },
                       { u"system/brave-browser.desktop"_s, plain } }
            << u"com.brave.Browser"_s << u"own/brave-browser.desktop"_s;
        QTest::newRow("hidden by the person's own file")
            << Files { { u"own/google-chrome.desktop"_s, "[Desktop Entry]\nHidden=true\n" },
                       { u"system/google-chrome.desktop"_s, plain } }
            << u"com.google.Chrome"_s << QString();
        QTest::newRow("left behind without its program, so the next one") << Files {
            { u"system/chromium.desktop"_s, "[Desktop Entry]\n TryExec = /nonexistent/chromium\nExec=x\n" },
            { u"extra/org.chromium.Chromium.desktop"_s, "[Desktop Entry]\nTryExec=sh\n" }
        } << u"org.chromium.Chromium"_s << u"extra/org.chromium.Chromium.desktop"_s;
        QTest::newRow("keys of an action are not the file's")
            << Files { { u"system/chromium.desktop"_s,
                         "[Desktop Entry]\nExec=x\n[Desktop Action new]\nHidden=true\nTryExec=/none\n" } }
            << u"org.chromium.Chromium"_s << u"system/chromium.desktop"_s;
        QTest::newRow("another browser")
            << Files { { u"system/chromium.desktop"_s, plain } } << u"com.google.Chrome"_s << QString();
        QTest::newRow("no browser that we know")
            << Files { { u"system/org.example.Browser.desktop"_s, plain } } << u"org.example.Browser"_s
            << QString();
    }

    void findsTheInstalledFile()
    {
        QFETCH(Files, files);
        QFETCH(QString, bundleIdentifier);
        QFETCH(QString, found);
        QTemporaryDir root;
        const QDir folder(root.path());
        for (auto file = files.cbegin(); file != files.cend(); ++file)
            writeFile(folder.filePath(file.key()), *file);
        const DesktopApplicationLookup lookup(
            { folder.filePath(u"own"_s), folder.filePath(u"system"_s), folder.filePath(u"extra"_s) });
        const auto location = lookup.locationOf(bundleIdentifier);
        QCOMPARE(location.value_or(QString()), found.isEmpty() ? QString() : folder.filePath(found));
    }
};

QTEST_GUILESS_MAIN(TestDesktopApplicationLookup)
#include "TestDesktopApplicationLookup.moc"
