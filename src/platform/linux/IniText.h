#pragma once
#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace kestrel {

/// The text of an INI file that people edit by hand. Setting a value replaces its line and leaves every other
/// as it is: comments, order, unknown keys, other sections. Keys are those of the section "General" or of no
/// section, and consist of ASCII letters, digits, '.', '_' and '-'. QSettings reads what is written here, and
/// the other way round.
///
/// A value in quotes is text, and one without quotes is what it is asked for: hand-written text needs none.
/// Where a key stands twice, the last one counts.
class IniText final
{
public:
    explicit IniText(const QByteArray &text = {});

    [[nodiscard]] QByteArray text() const;

    /// Whether there are lines that are neither section, comment nor a key with its value.
    [[nodiscard]] bool isDamaged() const;
    void dropDamagedLines();

    [[nodiscard]] std::optional<qint64> integer(const QString &key) const;
    /// true, yes, on, 1 and their opposites, in any letter case.
    [[nodiscard]] std::optional<bool> boolean(const QString &key) const;
    [[nodiscard]] std::optional<QString> string(const QString &key) const;
    [[nodiscard]] std::optional<QStringList> stringList(const QString &key) const;
    [[nodiscard]] std::optional<QByteArray> data(const QString &key) const;

    void setInteger(const QString &key, qint64 value);
    void setBoolean(const QString &key, bool value);
    void setString(const QString &key, const QString &value);
    void setStringList(const QString &key, const QStringList &value);
    void setData(const QString &key, const QByteArray &value);
    void remove(const QString &key);

private:
    enum class Kind { Other, GeneralSection, Section, Entry, Damaged };
    struct Line
    {
        QByteArray raw; ///< without its end
        Kind kind = Kind::Other;
        QString key; ///< of an Entry in the general section
        QString value; ///< of an Entry, as it stands there
    };

    [[nodiscard]] static Line parse(const QByteArray &raw);
    [[nodiscard]] std::optional<QString> value(const QString &key) const;
    void set(const QString &key, const QString &value);

    QList<Line> m_lines;
    bool m_endsInLineBreak = true;
};

} // namespace kestrel
