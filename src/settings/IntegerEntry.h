#pragma once
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>
#include <functional>

namespace kestrel {

/// A whole number that is typed. What is no number, or one outside of the range, is not stored, and `error`
/// says what is allowed.
class IntegerEntry final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' models make it")
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
public:
    struct Range
    {
        qint64 smallest = 0;
        qint64 largest = 0;
    };

    IntegerEntry(Range range, std::function<qint64()> stored, std::function<void(qint64)> store);

    /// The stored number.
    [[nodiscard]] QString text() const;
    [[nodiscard]] QString error() const;

    /// What stands in the field so far: tells whether it could be stored.
    Q_INVOKABLE void check(const QString &typed);
    /// Stores it if it can be.
    Q_INVOKABLE void enter(const QString &typed);
    /// The person does not want it: nothing is wrong any more.
    Q_INVOKABLE void discard();

Q_SIGNALS:
    void changed();

private:
    void setRefused(bool refused);

    Range m_range;
    std::function<qint64()> m_stored;
    std::function<void(qint64)> m_store;
    bool m_isRefused = false;
};

} // namespace kestrel
