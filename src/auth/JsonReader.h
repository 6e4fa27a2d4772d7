#pragma once
#include "base/DecodingError.h"
#include <QByteArray>
#include <QJsonObject>
#include <QLatin1StringView>
#include <QString>
#include <expected>
#include <optional>
#include <utility>

namespace kestrel {

/// Reads a small JSON object strictly: a member of another kind than asked for is a fault. The first fault is
/// kept and given at the end, so that a record is read in one go. Descriptions never hold a value: it may be
/// a token.
class JsonReader final
{
public:
    explicit JsonReader(const QByteArray &json);

    [[nodiscard]] QString string(QLatin1StringView name);
    /// Null counts as absent.
    [[nodiscard]] std::optional<QString> optionalString(QLatin1StringView name);
    /// Numbers without a fraction, however they are written.
    [[nodiscard]] std::optional<qint64> optionalInteger(QLatin1StringView name);

    void fail(const QString &description);

    template<typename T>
    [[nodiscard]] std::expected<T, DecodingError> finish(T record)
    {
        if (m_fault)
            return std::unexpected(*m_fault);
        return record;
    }

private:
    [[nodiscard]] bool isAbsent(QLatin1StringView name) const;

    QJsonObject m_object;
    std::optional<DecodingError> m_fault;
};

} // namespace kestrel
