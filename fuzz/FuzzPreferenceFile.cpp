// Any bytes as the preference file: reads every kind of value, and every edit must leave the other lines as
// they stood. Then the texts within the values: shortcuts, accounts, the calendars that were chosen.
#include "Require.h"
#include "hotkeys/Hotkey.h"
#include "model/CalendarAccount.h"
#include "platform/linux/IniText.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <functional>

using namespace kestrel;
using namespace Qt::StringLiterals;

namespace {

/// Everything that can be read under a key.
struct Values
{
    explicit Values(const IniText &text, const QString &key)
        : integer(text.integer(key))
        , boolean(text.boolean(key))
        , string(text.string(key))
        , list(text.stringList(key))
        , data(text.data(key))
    {
    }

    std::optional<qint64> integer;
    std::optional<bool> boolean;
    std::optional<QString> string;
    std::optional<QStringList> list;
    std::optional<QByteArray> data;

    friend bool operator==(const Values &, const Values &) = default;
};

/// Lines in order, without the one that starts the section and those of the key.
QList<QByteArray> otherLines(const QByteArray &text)
{
    QList<QByteArray> lines = text.split('\n');
    lines.removeIf([](const QByteArray &line) {
        // the byte order mark of a line that is replaced goes with it
        QByteArray key = line.trimmed();
        if (key.startsWith("\xef\xbb\xbf"))
            key.remove(0, 3);
        return line.isEmpty() || line == "[General]" || key.trimmed().startsWith('k');
    });
    return lines;
}

void checkEdit(const QByteArray &before, const std::function<void(IniText &)> &edit,
               const std::function<bool(const IniText &)> &isStored)
{
    IniText text(before);
    const Values neighbour(text, u"a"_s);
    edit(text);
    require(isStored(text));
    require(Values(text, u"a"_s) == neighbour);
    require(otherLines(text.text()) == otherLines(before));
    const IniText again(text.text());
    require(again.text() == text.text());
    require(again.isDamaged() == text.isDamaged());
    require(isStored(again));
    require(Values(again, u"a"_s) == neighbour);
    // what is stored already costs no byte
    edit(text);
    require(text.text() == again.text());
}

void checkValues(const Values &values, const QByteArray &before)
{
    const QString key = u"k"_s;
    if (values.integer) {
        checkEdit(
            before, [&](IniText &text) { text.setInteger(key, *values.integer); },
            [&](const IniText &text) { return text.integer(key) == values.integer; });
    }
    if (values.string) {
        checkEdit(
            before, [&](IniText &text) { text.setString(key, *values.string); },
            [&](const IniText &text) { return text.string(key) == values.string; });
    }
    if (values.list) {
        checkEdit(
            before, [&](IniText &text) { text.setStringList(key, *values.list); },
            [&](const IniText &text) { return text.stringList(key) == values.list; });
    }
    if (values.data) {
        checkEdit(
            before, [&](IniText &text) { text.setData(key, *values.data); },
            [&](const IniText &text) { return text.data(key) == values.data; });
    }
}

/// Kinds take turns by the number, since an edit takes longer than all reading. The bytes of the file are
/// values too, whatever they are.
void checkOneEdit(const QByteArray &before, size_t kind)
{
    const QString key = u"k"_s;
    const QString asText = QString::fromUtf8(before);
    if (kind == 0) {
        checkEdit(
            before, [&](IniText &text) { text.setInteger(key, before.size()); },
            [&](const IniText &text) { return text.integer(key) == before.size(); });
    } else if (kind == 1) {
        checkEdit(
            before, [&](IniText &text) { text.setBoolean(key, true); },
            [&](const IniText &text) { return text.boolean(key) == true; });
    } else if (kind == 2) {
        checkEdit(
            before, [&](IniText &text) { text.setData(key, before); },
            [&](const IniText &text) { return text.data(key) == before; });
    } else if (kind == 3) {
        checkEdit(
            before, [&](IniText &text) { text.setString(key, asText); },
            [&](const IniText &text) { return text.string(key) == asText; });
    } else {
        const QStringList list { asText, QString(), asText };
        checkEdit(
            before, [&](IniText &text) { text.setStringList(key, list); },
            [&](const IniText &text) { return text.stringList(key) == list; });
    }
}

void checkShortcut(const QString &raw)
{
    if (const auto hotkey = Hotkey::fromRaw(raw)) {
        require(Hotkey::fromRaw(hotkey->raw()) == hotkey);
        require(!hotkey->displayParts().isEmpty());
    }
}

void checkAccounts(const QByteArray &json)
{
    const auto array = QJsonDocument::fromJson(json).array();
    for (const auto &value : array) {
        const auto account = CalendarAccount::fromJson(value.toObject());
        require(account || !account.error().description.isEmpty());
        if (account)
            require(CalendarAccount::fromJson(account->toJson()) == account);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const QByteArray before(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    IniText text(before);
    require(text.text() == before);

    const Values values(text, u"k"_s);
    checkValues(values, before);
    checkOneEdit(before, size % 5);

    text.dropDamagedLines();
    require(!text.isDamaged() && !IniText(text.text()).isDamaged());
    require(Values(text, u"k"_s) == values);
    text.remove(u"k"_s);
    require(!text.string(u"k"_s) && !text.stringList(u"k"_s));

    checkShortcut(values.string.value_or(QString::fromUtf8(before)));
    checkAccounts(values.data.value_or(before));
    return 0;
}
