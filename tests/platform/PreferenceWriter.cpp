// Another process with the same preference file: `preference-writer MODE FILE KEY [COUNT]`.
//   count    sets KEY to 1 … COUNT
//   endless  the same without an end, and says each number once it is stored
//   full     sets KEY to 7 where no file may grow over 4096 bytes, as on a full disk
//   foreign  sets KEY to 7 as a user who owns nothing here
// The two last say what they were told, and how the key reads then.
#include "platform/linux/IniPreferenceStore.h"
#include <QCoreApplication>
#include <csignal>
#include <cstdio>
#include <limits>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString &mode = arguments.at(1);
    const QString &key = arguments.at(3);
    kestrel::IniPreferenceStore store(arguments.at(2));
    QObject::connect(&store, &kestrel::PreferenceStore::writeFailed,
                     [](const QString &, const QString &reason) { std::puts(qPrintable(reason)); });

    if (mode == "count"_L1 || mode == "endless"_L1) {
        const qint64 count =
            mode == "endless"_L1 ? std::numeric_limits<qint64>::max() : arguments.at(4).toLongLong();
        for (qint64 number = 1; number <= count; ++number) {
            store.setInteger(key, number);
            if (mode == "endless"_L1) {
                std::printf("%lld\n", static_cast<long long>(number));
                std::fflush(stdout);
            }
        }
        return 0;
    }
    if (mode == "full"_L1) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit { 4096, 4096 };
        if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return 2;
    } else if (getuid() == 0 && setuid(65534) != 0) {
        return 2;
    }
    store.setInteger(key, 7);
    std::printf("%lld\n", static_cast<long long>(store.integer(key).value_or(-1)));
    return 0;
}
