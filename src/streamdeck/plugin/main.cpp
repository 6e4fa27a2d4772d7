#include "streamdeck/plugin/DeckPlugin.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <cstdio>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.setApplicationDescription(u"Kestrel's keys. The Stream Deck program starts this one."_s);
    parser.addHelpOption();
    const QCommandLineOption port(u"port"_s, u"where the Stream Deck program listens"_s, u"port"_s);
    const QCommandLineOption uuid(u"pluginUUID"_s, u"its name for this process"_s, u"name"_s);
    const QCommandLineOption event(u"registerEvent"_s, u"the event to register with"_s, u"event"_s);
    const QCommandLineOption info(u"info"_s, u"not used"_s, u"JSON"_s);
    parser.addOptions({ port, uuid, event, info });
    parser.process(application);
    const kestrel::DeckRegistration registration { parser.value(port).toUShort(), parser.value(uuid),
                                                   parser.value(event) };
    if (registration.port == 0 || registration.registerEvent.isEmpty()) {
        std::fputs("The Stream Deck program starts this one, with -port and -registerEvent.\n", stderr);
        return 2;
    }
    bool isGiven = false;
    const int bridgePort = qEnvironmentVariableIntValue("KESTREL_BRIDGE_PORT", &isGiven);
    kestrel::DeckPlugin plugin(registration, QCoreApplication::applicationDirPath() + u"/images"_s,
                               isGiven ? quint16(bridgePort) : quint16(18424));
    QObject::connect(&plugin, &kestrel::DeckPlugin::ended, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
