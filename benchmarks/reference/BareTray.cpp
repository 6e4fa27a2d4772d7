// The least that a Qt program with a tray icon can be: what Kestrel's start is held against.
#include <QApplication>
#include <QIcon>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QPixmap square(22, 22);
    square.fill(Qt::darkCyan);
    QSystemTrayIcon icon { QIcon(square) };
    icon.show();
    return QApplication::exec();
}
