#include "platform/linux/XdgLoginItem.h"
#include "support/Files.h"
#include <QTemporaryDir>
#include <QTest>
#include <gio/gdesktopappinfo.h>

using namespace Qt::StringLiterals;

namespace kestrel {

class TestXdgLoginItem final : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    [[nodiscard]] QString autostart() const { return m_folder->filePath(u"config/autostart"_s); }
    [[nodiscard]] QString entry() const { return autostart() + u"/app.kestrel.Kestrel.desktop"_s; }

    /// A program that leaves "<its path>.started" behind.
    [[nodiscard]] QString program(const QString &name) const
    {
        const QString path = m_folder->filePath(name);
        writeProgram(path, "#!/bin/sh\ntest $# -eq 0 && : >\"$0.started\"\n");
        return path;
    }

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void theDesktopStartsTheProgram_data()
    {
        QTest::addColumn<QString>("name");
        for (const auto *name :
             { u"kestrel", u"with space", u"quo\"te' $HOME `id`", u"back\\slash\\n", u"two\nlines ünï" })
            QTest::addRow("%s", qPrintable(QString::fromUtf16(name))) << QString::fromUtf16(name);
    }

    void theDesktopStartsTheProgram()
    {
        QFETCH(QString, name);
        const QString path = program(name);
        XdgLoginItem item(autostart(), path);
        QVERIFY(item.setEnabled(true));

        GDesktopAppInfo *info = g_desktop_app_info_new_from_filename(QFile::encodeName(entry()).constData());
        QVERIFY(info); // there is none for an entry whose TryExec names no program
        QVERIFY(g_desktop_app_info_get_boolean(info, "X-GNOME-Autostart-enabled"));
        const bool launched = g_app_info_launch(G_APP_INFO(info), nullptr, nullptr, nullptr);
        g_object_unref(info);
        QVERIFY(launched);
        QTRY_VERIFY(QFile::exists(path + u".started"_s));
    }

    void theEntryComesAndGoesAndIsNotRewrittenInBetween()
    {
        XdgLoginItem item(autostart(), program(u"kestrel"_s));
        QVERIFY(item.setEnabled(false));
        QVERIFY(!QFile::exists(autostart()));
        QVERIFY(item.setEnabled(true));

        const QDateTime longAgo = QDateTime::fromSecsSinceEpoch(1'000'000);
        QFile file(entry());
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(longAgo, QFileDevice::FileModificationTime));
        file.close();
        QVERIFY(item.setEnabled(true));
        QCOMPARE(QFileInfo(entry()).lastModified(), longAgo);

        XdgLoginItem moved(autostart(), program(u"kestrel-2"_s));
        QVERIFY(moved.setEnabled(true));
        QVERIFY(QFileInfo(entry()).lastModified() != longAgo);

        QVERIFY(item.setEnabled(false));
        QVERIFY(!QFile::exists(entry()));
        QVERIFY(item.setEnabled(false));
    }

    void whatTheDesktopSwitchedOffStaysOff()
    {
        XdgLoginItem item(autostart(), program(u"kestrel"_s));
        QVERIFY(item.setEnabled(true));
        const QByteArray content =
            contentOf(entry()).replace("X-GNOME-Autostart-enabled=true", "Hidden=true");
        writeFile(entry(), content);
        QVERIFY(!item.setEnabled(true));
        QCOMPARE(contentOf(entry()), content);

        QVERIFY(item.setEnabled(false));
        QVERIFY(item.setEnabled(true));
    }

    void whatCannotBeDoneSaysWhy()
    {
        for (const auto &path : { u"/opt/a=b/kestrel"_s, u"/opt/100%/kestrel"_s, u"kestrel"_s })
            QVERIFY(XdgLoginItem(autostart(), path).setEnabled(true).error().contains(path));

        QVERIFY(QDir().mkpath(entry() + u"/full"_s));
        XdgLoginItem blocked(autostart(), program(u"kestrel"_s));
        QVERIFY(blocked.setEnabled(true).error().contains(entry()));
        QVERIFY(blocked.setEnabled(false).error().contains(entry()));
    }
};

} // namespace kestrel

QTEST_GUILESS_MAIN(kestrel::TestXdgLoginItem)
#include "TestXdgLoginItem.moc"
