#pragma once
#include "base/Instant.h"
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

/// How much of a running meeting has passed, as its ring shows it.
class OngoingProgress : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("view models make it")
    Q_PROPERTY(double fraction READ fraction NOTIFY changed)
    Q_PROPERTY(QString minutesLeft READ minutesLeft NOTIFY changed)
    Q_PROPERTY(QString accessibleText READ accessibleText NOTIFY changed)
public:
    using QObject::QObject;

    /// Always announces, since the language may be another one.
    void update(Instant start, Instant end, Instant now);

    /// From 0 to 1.
    [[nodiscard]] double fraction() const { return m_fraction; }
    [[nodiscard]] QString minutesLeft() const;
    [[nodiscard]] QString accessibleText() const;

Q_SIGNALS:
    void changed();

private:
    double m_fraction = 0;
    int m_minutesLeft = 0;
};

} // namespace kestrel
