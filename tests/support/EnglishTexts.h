#pragma once
#include <QCoreApplication>
#include <QTranslator>

namespace kestrel {

/// While it lives, the program's texts are those of a person who reads English; without it they are their
/// keys.
class EnglishTexts final
{
public:
    EnglishTexts()
    {
        if (!m_translator.load(QStringLiteral(":/i18n/kestrel_en.qm")))
            qFatal("the test is not linked with the texts");
        QCoreApplication::installTranslator(&m_translator);
    }

private:
    QTranslator m_translator;
};

} // namespace kestrel
