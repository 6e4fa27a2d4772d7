#include "app/Language.h"
#include "platform/PreferenceStore.h"
#include <QCoreApplication>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace kestrel {

bool Language::apply(const PreferenceStore &store)
{
    const auto overridden = store.stringList(u"AppleLanguages"_s);
    const QStringList wanted = overridden.value_or(QLocale::system().uiLanguages());
    QString language = u"en"_s;
    for (const QString &candidate : wanted) {
        const QString code = candidate.left(2).toLower();
        if (code == "en"_L1 || code == "es"_L1) {
            language = code;
            break;
        }
    }
    // The session's locale knows the person's country and habits; an override names a language alone.
    const bool isSessions = QLocale::system().name().startsWith(language);
    QLocale::setDefault(isSessions ? QLocale::system() : QLocale(language));
    if (language == m_current)
        return false;
    m_current = language;
    m_translator = std::make_unique<QTranslator>();
    if (m_translator->load(u":/i18n/kestrel_"_s + language))
        QCoreApplication::installTranslator(m_translator.get());
    return true;
}

} // namespace kestrel
