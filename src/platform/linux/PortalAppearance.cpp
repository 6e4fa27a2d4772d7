#include "platform/linux/PortalAppearance.h"
#include "base/Log.h"
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

using Groups = QMap<QString, QVariantMap>;

constexpr QLatin1StringView service { "org.freedesktop.portal.Desktop" };
constexpr QLatin1StringView path { "/org/freedesktop/portal/desktop" };
constexpr QLatin1StringView interface { "org.freedesktop.portal.Settings" };
constexpr QLatin1StringView appearanceGroup { "org.freedesktop.appearance" };
constexpr QLatin1StringView gnomeGroup { "org.gnome.desktop.interface" };

QString nameOf(const QString &group, const QString &key)
{
    return group + u' ' + key;
}

/// Three numbers from 0 to 1; anything outside means that the desktop names no colour.
std::optional<QColor> colorFrom(const QVariant &value)
{
    if (value.metaType() != QMetaType::fromType<QDBusArgument>())
        return {};
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != "(ddd)"_L1)
        return {};
    double red = -1;
    double green = -1;
    double blue = -1;
    argument.beginStructure();
    argument >> red >> green >> blue;
    argument.endStructure();
    for (const double part : { red, green, blue }) {
        if (!(part >= 0 && part <= 1))
            return {};
    }
    return QColor::fromRgbF(float(red), float(green), float(blue));
}

} // namespace

PortalAppearance::PortalAppearance(QObject *parent)
    : Appearance(parent)
    , m_override(qEnvironmentVariable("KESTREL_COLOR_SCHEME"))
{
    qDBusRegisterMetaType<Groups>();
    connect(&m_compositor, &X11Compositor::isRunningChanged, this, &Appearance::changed);
    m_wishes = wishes();

    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.connect(service, path, interface, u"SettingChanged"_s, this, SLOT(onSettingChanged(QDBusMessage)));
    // a portal that comes up late, or again
    auto *watcher = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceRegistered, this, &PortalAppearance::ask);
    ask();
}

void PortalAppearance::ask()
{
    auto call = QDBusMessage::createMethodCall(service, path, interface, u"ReadAll"_s);
    call << QStringList { appearanceGroup, gnomeGroup };
    auto *answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, &PortalAppearance::learn);
}

void PortalAppearance::learn(QDBusPendingCallWatcher *answer)
{
    answer->deleteLater();
    const QDBusPendingReply<Groups> reply = *answer;
    if (reply.isError()) {
        qCDebug(lcApp).noquote() << "No settings portal:" << errorForLog(reply.error().message());
        return;
    }
    const Groups groups = reply.value();
    for (auto group = groups.cbegin(); group != groups.cend(); ++group) {
        for (auto setting = group->cbegin(); setting != group->cend(); ++setting)
            m_settings.insert(nameOf(group.key(), setting.key()), setting.value());
    }
    apply();
}

void PortalAppearance::onSettingChanged(const QDBusMessage &message)
{
    const QVariantList arguments = message.arguments();
    if (message.signature() != "ssv"_L1)
        return;
    const QString group = arguments[0].toString();
    if (group != appearanceGroup && group != gnomeGroup)
        return;
    m_settings.insert(nameOf(group, arguments[1].toString()), arguments[2].value<QDBusVariant>().variant());
    apply();
}

void PortalAppearance::apply()
{
    const Wishes now = wishes();
    if (now == m_wishes)
        return;
    m_wishes = now;
    Q_EMIT changed();
}

PortalAppearance::Wishes PortalAppearance::wishes() const
{
    const auto common = [this](const QString &key) { return m_settings.value(nameOf(appearanceGroup, key)); };
    const auto gnome = [this](const QString &key) { return m_settings.value(nameOf(gnomeGroup, key)); };

    Wishes wishes;
    if (m_override == "dark"_L1 || m_override == "light"_L1)
        wishes.isDark = m_override == "dark"_L1;
    else if (const QVariant scheme = common(u"color-scheme"_s); scheme.isValid())
        wishes.isDark = scheme.toUInt() == 1;
    else
        wishes.isDark = gnome(u"color-scheme"_s).toString() == "prefer-dark"_L1;
    wishes.accent = colorFrom(common(u"accent-color"_s));
    wishes.reducesTransparency = common(u"contrast"_s).toUInt() == 1;
    const QVariant animations = gnome(u"enable-animations"_s);
    wishes.reducesMotion =
        common(u"reduced-motion"_s).toUInt() == 1 || (animations.isValid() && !animations.toBool());
    return wishes;
}

} // namespace kestrel
