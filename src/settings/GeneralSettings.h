#pragma once
#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace kestrel {

class LoginItem;
class Preferences;

/// When alerts come, how long they stay and where, and whether Kestrel starts with the session. Pickers work
/// by index; -1 is a stored value that the picker does not offer. What it is given outlives it.
class GeneralSettings final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("the settings' model makes it")
    Q_PROPERTY(QStringList leadTimes READ leadTimes NOTIFY retranslated)
    Q_PROPERTY(int leadTime READ leadTime WRITE setLeadTime NOTIFY changed)
    Q_PROPERTY(int autoDismissSeconds READ autoDismissSeconds WRITE setAutoDismissSeconds NOTIFY changed)
    Q_PROPERTY(QString autoDismissText READ autoDismissText NOTIFY changed)
    Q_PROPERTY(int autoDismissStep MEMBER autoDismissStep CONSTANT)
    Q_PROPERTY(int longestAutoDismiss MEMBER longestAutoDismiss CONSTANT)
    Q_PROPERTY(QStringList positions READ positions NOTIFY retranslated)
    Q_PROPERTY(int position READ position WRITE setPosition NOTIFY changed)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY changed)
public:
    static constexpr int autoDismissStep = 5;
    static constexpr int longestAutoDismiss = 120;

    GeneralSettings(Preferences &preferences, LoginItem &loginItem);

    void retranslate();

    [[nodiscard]] QStringList leadTimes() const;
    [[nodiscard]] int leadTime() const;
    void setLeadTime(int index);
    /// As stored, but never negative; a longer time than the picker offers stays until it is stepped.
    [[nodiscard]] int autoDismissSeconds() const;
    /// Brought into 0 to longestAutoDismiss.
    void setAutoDismissSeconds(int seconds);
    /// "30s", or in words that a card waits.
    [[nodiscard]] QString autoDismissText() const;
    [[nodiscard]] QStringList positions() const;
    [[nodiscard]] int position() const;
    void setPosition(int index);
    [[nodiscard]] bool launchAtLogin() const;
    /// Registers or unregisters the login item as well.
    void setLaunchAtLogin(bool launch);

Q_SIGNALS:
    void changed();
    void retranslated();

private:
    Preferences &m_preferences;
    LoginItem &m_loginItem;
};

} // namespace kestrel
