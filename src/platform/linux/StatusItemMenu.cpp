#include "platform/linux/StatusItemMenu.h"
#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

/// (ia{sv}av)
struct MenuLayout
{
    int number = 0;
    QVariantMap properties;
    QList<MenuLayout> children;
};

/// (ia{sv})
struct EntryProperties
{
    int number = 0;
    QVariantMap properties;
};

/// (ias)
struct RemovedProperties
{
    int number = 0;
    QStringList names;
};

/// (isvu)
struct MenuEvent
{
    int number = 0;
    QString event;
    QDBusVariant value;
    uint timestamp = 0;
};

QDBusArgument &operator<<(QDBusArgument &argument, const MenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.number << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const MenuLayout &child : layout.children)
        argument << QDBusVariant(QVariant::fromValue(child));
    argument.endArray();
    argument.endStructure();
    return argument;
}

// only written; registration asks for the other direction as well
const QDBusArgument &operator>>(const QDBusArgument &argument, MenuLayout & /*layout*/)
{
    return argument;
}

template<typename Entry, typename Second>
void write(QDBusArgument &argument, const Entry &entry, Second Entry::*second)
{
    argument.beginStructure();
    argument << entry.number << entry.*second;
    argument.endStructure();
}

template<typename Entry, typename Second>
void read(const QDBusArgument &argument, Entry &entry, Second Entry::*second)
{
    argument.beginStructure();
    argument >> entry.number >> entry.*second;
    argument.endStructure();
}

QDBusArgument &operator<<(QDBusArgument &argument, const EntryProperties &entry)
{
    write(argument, entry, &EntryProperties::properties);
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, EntryProperties &entry)
{
    read(argument, entry, &EntryProperties::properties);
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const RemovedProperties &entry)
{
    write(argument, entry, &RemovedProperties::names);
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, RemovedProperties &entry)
{
    read(argument, entry, &RemovedProperties::names);
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, MenuEvent &event)
{
    argument.beginStructure();
    argument >> event.number >> event.event >> event.value >> event.timestamp;
    argument.endStructure();
    return argument;
}

constexpr QLatin1StringView menuMembers { R"xml(
<method name="GetLayout">
<arg type="i" direction="in"/><arg type="i" direction="in"/><arg type="as" direction="in"/>
<arg type="u" direction="out"/><arg type="(ia{sv}av)" direction="out"/>
</method>
<method name="GetGroupProperties">
<arg type="ai" direction="in"/><arg type="as" direction="in"/><arg type="a(ia{sv})" direction="out"/>
</method>
<method name="GetProperty">
<arg type="i" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="out"/>
</method>
<method name="Event">
<arg type="i" direction="in"/><arg type="s" direction="in"/><arg type="v" direction="in"/>
<arg type="u" direction="in"/>
</method>
<method name="EventGroup"><arg type="a(isvu)" direction="in"/><arg type="ai" direction="out"/></method>
<method name="AboutToShow"><arg type="i" direction="in"/><arg type="b" direction="out"/></method>
<method name="AboutToShowGroup">
<arg type="ai" direction="in"/><arg type="ai" direction="out"/><arg type="ai" direction="out"/>
</method>
<signal name="ItemsPropertiesUpdated"><arg type="a(ia{sv})"/><arg type="a(ias)"/></signal>
<signal name="LayoutUpdated"><arg type="u"/><arg type="i"/></signal>
)xml" };

} // namespace

StatusItemMenu::StatusItemMenu(QDBusConnection bus)
    : DBusServedObject(std::move(bus), path, u"com.canonical.dbusmenu"_s, menuMembers)
{
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<EntryProperties>();
    qDBusRegisterMetaType<QList<EntryProperties>>();
    qDBusRegisterMetaType<RemovedProperties>();
    qDBusRegisterMetaType<QList<RemovedProperties>>();
}

void StatusItemMenu::setEntries(const QList<StatusItemMenuEntry> &entries)
{
    QList<StatusItemMenuEntry> now = entries;
    int separators = 0;
    for (StatusItemMenuEntry &entry : now) {
        if (entry.id.isEmpty())
            entry.id = u"-"_s + QString::number(++separators);
        if (!m_ids.contains(entry.id))
            m_ids << entry.id;
    }
    if (m_entries == now)
        return;
    const QList<StatusItemMenuEntry> before = std::exchange(m_entries, now);
    QList<EntryProperties> changed;
    bool hasSameEntries = before.size() == m_entries.size();
    for (qsizetype i = 0; hasSameEntries && i < before.size(); ++i) {
        hasSameEntries = before[i].id == m_entries[i].id;
        if (before[i] != m_entries[i]) {
            const auto number = static_cast<int>(m_ids.indexOf(m_entries[i].id));
            changed << EntryProperties { number, propertiesOf(number, {}) };
        }
    }
    if (hasSameEntries) {
        announce(u"ItemsPropertiesUpdated"_s,
                 { QVariant::fromValue(changed), QVariant::fromValue(QList<RemovedProperties>()) });
    } else {
        announce(u"LayoutUpdated"_s, { ++m_revision, 0 });
    }
}

QVariantMap StatusItemMenu::properties() const
{
    const bool isRightToLeft = QLocale().textDirection() == Qt::RightToLeft;
    return { { u"Version"_s, 3U },
             { u"TextDirection"_s, isRightToLeft ? u"rtl"_s : u"ltr"_s },
             { u"Status"_s, u"normal"_s },
             { u"IconThemePath"_s, QStringList() } };
}

std::optional<QVariantList> StatusItemMenu::call(const QString &method, const QVariantList &arguments)
{
    if (method == "GetLayout(iias)"_L1) {
        const int number = arguments[0].toInt();
        const QStringList names = arguments[2].toStringList();
        MenuLayout layout { number, propertiesOf(number, names), {} };
        if (number == 0 && arguments[1].toInt() != 0) {
            for (const int child : numbers())
                layout.children << MenuLayout { child, propertiesOf(child, names), {} };
        }
        return QVariantList { m_revision, QVariant::fromValue(layout) };
    }
    if (method == "GetGroupProperties(aias)"_L1) {
        auto wanted = qdbus_cast<QList<int>>(arguments[0]);
        if (wanted.isEmpty())
            wanted = numbers();
        QList<EntryProperties> found;
        for (const int number : wanted)
            found << EntryProperties { number, propertiesOf(number, arguments[1].toStringList()) };
        return QVariantList { QVariant::fromValue(found) };
    }
    if (method == "GetProperty(is)"_L1) {
        const QString name = arguments[1].toString();
        const QVariant value = propertiesOf(arguments[0].toInt(), { name }).value(name, QString());
        return QVariantList { QVariant::fromValue(QDBusVariant(value)) };
    }
    if (method == "Event(isvu)"_L1) {
        (void)trigger(arguments[0].toInt(), arguments[1].toString());
        return QVariantList();
    }
    if (method == "EventGroup(a(isvu))"_L1) {
        QList<int> unknown;
        for (const MenuEvent &event : qdbus_cast<QList<MenuEvent>>(arguments[0])) {
            if (!trigger(event.number, event.event))
                unknown << event.number;
        }
        return QVariantList { QVariant::fromValue(unknown) };
    }
    if (method == "AboutToShow(i)"_L1)
        return QVariantList { false };
    if (method == "AboutToShowGroup(ai)"_L1)
        return QVariantList { QVariant::fromValue(QList<int>()), QVariant::fromValue(QList<int>()) };
    return std::nullopt;
}

QList<int> StatusItemMenu::numbers() const
{
    QList<int> all;
    for (const StatusItemMenuEntry &entry : m_entries)
        all << static_cast<int>(m_ids.indexOf(entry.id));
    return all;
}

QVariantMap StatusItemMenu::propertiesOf(int number, const QStringList &names) const
{
    QVariantMap all;
    if (number == 0)
        all[u"children-display"_s] = u"submenu"_s;
    for (const StatusItemMenuEntry &entry : m_entries) {
        if (entry.id != m_ids.value(number))
            continue;
        if (entry.id.startsWith(u'-')) {
            all[u"type"_s] = u"separator"_s;
        } else {
            // an underscore would mark the key that chooses the entry
            all[u"label"_s] = QString(entry.text).replace(u'_', u"__"_s);
            all[u"enabled"_s] = entry.isEnabled;
        }
    }
    if (!names.isEmpty())
        all.removeIf([&names](const auto &property) { return !names.contains(property.key()); });
    return all;
}

bool StatusItemMenu::trigger(int number, const QString &event)
{
    if (number == 0)
        return true;
    const QString id = m_ids.value(number);
    for (const StatusItemMenuEntry &entry : std::as_const(m_entries)) {
        if (entry.id != id)
            continue;
        if (event == "clicked"_L1 && entry.isEnabled && !id.startsWith(u'-'))
            Q_EMIT triggered(id);
        return true;
    }
    return false;
}

} // namespace kestrel
