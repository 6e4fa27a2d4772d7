#include "preferences/Preferences.h"
#include "base/Log.h"
#include "platform/LoginItem.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace kestrel {

using ScreenPosition = Preferences::ScreenPosition;
using LanguageCode = Preferences::LanguageCode;
using AlertSound = Preferences::AlertSound;

const std::array<ScreenPosition, 6> Preferences::screenPositions {
    ScreenPosition::TopLeft,    ScreenPosition::TopCenter,    ScreenPosition::TopRight,
    ScreenPosition::BottomLeft, ScreenPosition::BottomCenter, ScreenPosition::BottomRight,
};

const std::array<LanguageCode, 3> Preferences::languageCodes {
    LanguageCode::System,
    LanguageCode::En,
    LanguageCode::Es,
};

const std::array<AlertSound, 10> Preferences::alertSounds {
    AlertSound::Glass, AlertSound::Ping, AlertSound::Hero,   AlertSound::Submarine, AlertSound::Tink,
    AlertSound::Pop,   AlertSound::Blow, AlertSound::Bottle, AlertSound::Funk,      AlertSound::Purr,
};

namespace {

// in the order of the cases
constexpr std::array rawScreenPositions { "topLeft"_L1,    "topCenter"_L1,    "topRight"_L1,
                                          "bottomLeft"_L1, "bottomCenter"_L1, "bottomRight"_L1 };
constexpr std::array rawLanguageCodes { "system"_L1, "en"_L1, "es"_L1 };
constexpr std::array rawAlertSounds { "Glass"_L1, "Ping"_L1, "Hero"_L1,   "Submarine"_L1, "Tink"_L1,
                                      "Pop"_L1,   "Blow"_L1, "Bottle"_L1, "Funk"_L1,      "Purr"_L1 };

template<typename Case, std::size_t count>
Case caseOf(const std::array<Case, count> &cases, const QString &raw, Case fallback)
{
    const auto found =
        std::ranges::find_if(cases, [&](Case candidate) { return Preferences::rawValue(candidate) == raw; });
    return found == cases.end() ? fallback : *found;
}

} // namespace

QLatin1StringView Preferences::rawValue(ScreenPosition position)
{
    return rawScreenPositions.at(static_cast<std::size_t>(position));
}

QLatin1StringView Preferences::rawValue(LanguageCode language)
{
    return rawLanguageCodes.at(static_cast<std::size_t>(language));
}

QLatin1StringView Preferences::rawValue(AlertSound sound)
{
    return rawAlertSounds.at(static_cast<std::size_t>(sound));
}

Preferences::Preferences(PreferenceStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    connect(&m_store, &PreferenceStore::changedElsewhere, this, &Preferences::changed);
    connect(&m_store, &PreferenceStore::writeFailed, this, &Preferences::setUnsavedIn);
    connect(&m_store, &PreferenceStore::stored, this, [this] { setUnsavedIn({}); });
}

void Preferences::setUnsavedIn(const QString &path)
{
    if (std::exchange(m_unsavedIn, path) != path)
        Q_EMIT unsavedInChanged();
}

ScreenPosition Preferences::screenPosition() const
{
    return caseOf(screenPositions, screenPositionRaw(), ScreenPosition::TopRight);
}

void Preferences::setScreenPosition(ScreenPosition position)
{
    setScreenPositionRaw(rawValue(position));
}

AlertSound Preferences::alertSound() const
{
    return caseOf(alertSounds, alertSoundRaw(), AlertSound::Glass);
}

void Preferences::setAlertSound(AlertSound sound)
{
    setAlertSoundRaw(rawValue(sound));
}

LanguageCode Preferences::languageOverride() const
{
    return caseOf(languageCodes, languageOverrideRaw(), LanguageCode::System);
}

void Preferences::setLanguageOverride(LanguageCode language)
{
    Q_EMIT willChange();
    m_store.setString("languageOverrideRaw"_L1, rawValue(language));
    applyLanguageOverride();
    Q_EMIT changed();
}

void Preferences::applyLanguageOverride()
{
    const LanguageCode language = languageOverride();
    if (language == LanguageCode::System)
        m_store.remove(languagesKey);
    else
        m_store.setStringList(languagesKey, { rawValue(language) });
}

QMap<QString, QStringList> Preferences::selectedCalendarIDsByAccount() const
{
    const QJsonDocument document = QJsonDocument::fromJson(selectedCalendarIDsByAccountRaw().toUtf8());
    if (!document.isObject())
        return {};
    const QJsonObject object = document.object();
    QMap<QString, QStringList> selections;
    for (auto entry = object.begin(); entry != object.end(); ++entry) {
        if (!entry->isArray())
            return {};
        QStringList ids;
        const QJsonArray array = entry->toArray();
        for (const auto &id : array) {
            if (!id.isString())
                return {};
            ids.append(id.toString());
        }
        selections.insert(entry.key(), ids);
    }
    return selections;
}

QStringList Preferences::selectedCalendarIDs(const QString &accountID) const
{
    return selectedCalendarIDsByAccount().value(accountID);
}

void Preferences::setSelectedCalendarIDs(const QStringList &ids, const QString &accountID)
{
    auto selections = selectedCalendarIDsByAccount();
    if (ids.isEmpty())
        selections.remove(accountID);
    else
        selections.insert(accountID, ids);
    storeSelections(selections);
}

void Preferences::pruneCalendarSelections(const QSet<QString> &accountIDs)
{
    auto selections = selectedCalendarIDsByAccount();
    if (selections.removeIf([&](const auto &entry) { return !accountIDs.contains(entry.key()); }) > 0)
        storeSelections(selections);
}

void Preferences::storeSelections(const QMap<QString, QStringList> &selections)
{
    QJsonObject object;
    for (auto entry = selections.begin(); entry != selections.end(); ++entry)
        object.insert(entry.key(), QJsonArray::fromStringList(entry.value()));
    setSelectedCalendarIDsByAccountRaw(
        QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
}

Hotkey Preferences::hotkey(HotkeyAction action) const
{
    return Hotkey::fromRaw(rawHotkey(action)).value_or(row(action).defaultHotkey);
}

void Preferences::setHotkey(const Hotkey &hotkey, HotkeyAction action)
{
    setRawHotkey(hotkey.raw(), action);
}

void Preferences::resetHotkey(HotkeyAction action)
{
    setRawHotkey({}, action);
}

QString Preferences::rawHotkey(HotkeyAction action) const
{
    return read(row(action).preferenceKey, QString());
}

void Preferences::setRawHotkey(const QString &raw, HotkeyAction action)
{
    write(row(action).preferenceKey, raw);
}

qint64 Preferences::read(QLatin1StringView key, qint64 fallback) const
{
    return m_store.integer(key).value_or(fallback);
}

bool Preferences::read(QLatin1StringView key, bool fallback) const
{
    return m_store.boolean(key).value_or(fallback);
}

QString Preferences::read(QLatin1StringView key, const QString &fallback) const
{
    return m_store.string(key).value_or(fallback);
}

void Preferences::write(QLatin1StringView key, qint64 value)
{
    Q_EMIT willChange();
    m_store.setInteger(key, value);
    Q_EMIT changed();
}

void Preferences::write(QLatin1StringView key, bool value)
{
    Q_EMIT willChange();
    m_store.setBoolean(key, value);
    Q_EMIT changed();
}

void Preferences::write(QLatin1StringView key, const QString &value)
{
    Q_EMIT willChange();
    m_store.setString(key, value);
    Q_EMIT changed();
}

void setLaunchAtLogin(bool enabled, LoginItem &loginItem)
{
    if (const auto done = loginItem.setEnabled(enabled); !done)
        qCCritical(lcApp).noquote() << "LaunchAtLogin toggle failed:" << errorForLog(done.error());
}

} // namespace kestrel
