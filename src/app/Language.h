#pragma once
#include <QStringList>
#include <QTranslator>
#include <memory>

namespace kestrel {

class PreferenceStore;

/// The language of the texts and of dates and numbers: the first of the preference "AppleLanguages" that we
/// have a translation for, else the session's own, else English. Follows the preference at once.
class Language final
{
public:
    /// Installs translator and locale into the running application. True: the texts are in another language
    /// now.
    bool apply(const PreferenceStore &store);

    [[nodiscard]] QString current() const { return m_current; }

private:
    QString m_current;
    std::unique_ptr<QTranslator> m_translator;
};

} // namespace kestrel
