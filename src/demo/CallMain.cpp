#include "demo/Ending.h"
#include "demo/SampleCall.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace kestrel::demo;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(u"Plays the page of a call for Kestrel's demo and tests, over TLS on "
                                     u"127.0.0.1. Prints its port when it is "
                                     u"ready."_s);
    parser.addHelpOption();
    parser.addOptions({
        { u"host"_s, u"The name that the browser takes it for."_s, u"NAME"_s, u"meet.google.com"_s },
        { u"until-stdin-closes"_s, u"End when standard input ends, as it does when the parent dies."_s },
    });
    parser.process(application);

    const auto tls = SampleCall::selfSigned(parser.value(u"host"_s));
    if (!tls) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(tls.error()));
        return 1;
    }
    SampleCall call(*tls);
    if (const auto listening = call.listen(0); !listening) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(listening.error()));
        return 1;
    }
    endOnSignals();
    if (parser.isSet(u"until-stdin-closes"_s))
        endWithStdin();
    std::printf("%d\n", int(call.port()));
    std::fflush(stdout);
    return QCoreApplication::exec();
}
