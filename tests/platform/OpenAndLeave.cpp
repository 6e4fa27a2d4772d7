// Opens the address of its argument as Kestrel does, and ends at once.
#include "platform/linux/DesktopUrlOpener.h"
#include <QCoreApplication>
#include <QCoro/QCoroTask>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    kestrel::DesktopUrlOpener opener(std::chrono::milliseconds(1));
    return QCoro::waitFor(opener.open(QUrl(QCoreApplication::arguments().at(1)))) ? 0 : 1;
}
