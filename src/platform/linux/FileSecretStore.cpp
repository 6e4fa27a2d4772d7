#include "platform/linux/FileSecretStore.h"
#include "platform/linux/PrivateFile.h"
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace kestrel {

namespace {

constexpr auto onlyMine = QFile::ReadOwner | QFile::WriteOwner;
constexpr auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther
    | QFile::WriteOther | QFile::ExeOther;

std::optional<QByteArray> decoded(const QJsonValue &value)
{
    const auto bytes =
        QByteArray::fromBase64Encoding(value.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    return value.isString() && bytes ? std::optional(*bytes) : std::nullopt;
}

} // namespace

FileSecretStore::FileSecretStore(const QString &path)
    : m_path(QFileInfo(path).absoluteFilePath())
{
}

QCoro::Task<std::expected<QByteArray, SecretStatus>> FileSecretStore::copyMatching(SecretItem item)
{
    const auto content = load();
    if (!content)
        co_return std::unexpected(
            failed(u"The sign-in in %1 cannot be read: %2."_s.arg(m_path, content.error())));
    if (content->isDamaged)
        co_return std::unexpected(failedOnDamage());
    const auto found = std::ranges::find(content->entries, item, &Entry::item);
    if (found == content->entries.end())
        co_return std::unexpected(SecretStatus::NotFound);
    co_return found->secret;
}

QCoro::Task<SecretStatus> FileSecretStore::update(SecretItem item, QByteArray data)
{
    co_return change(Change::Update, item, data);
}

QCoro::Task<SecretStatus> FileSecretStore::add(SecretItem item, QByteArray data)
{
    co_return change(Change::Add, item, data);
}

QCoro::Task<SecretStatus> FileSecretStore::remove(SecretItem item)
{
    co_return change(Change::Remove, item, {});
}

QCoro::Task<SecretStoreCondition> FileSecretStore::condition()
{
    const auto content = load();
    const bool isReadable = content && !content->isDamaged;
    co_return SecretStoreCondition { SecretStoreCondition::Place::File,
                                     {},
                                     isReadable ? SecretStatus::Success : SecretStatus::Failed };
}

SecretStatus FileSecretStore::change(Change change, const SecretItem &item, const QByteArray &secret)
{
    const auto cannotWrite = [this](const QString &why) {
        return failed(
            u"The sign-in could not be kept in %1: %2. Check that the disk has space and that the file and "
            "its folder can be written to."_s.arg(m_path, why));
    };
    if (change != Change::Add && !QFileInfo::exists(m_path))
        return SecretStatus::NotFound;
    if (const auto made = makePrivateFolder(QFileInfo(m_path).path()); !made)
        return cannotWrite(made.error());
    const auto lock = lockFile(m_path, 5s);
    if (!lock)
        return cannotWrite(lock.error());
    auto content = load();
    if (!content)
        return cannotWrite(content.error());

    const auto found = std::ranges::find(content->entries, item, &Entry::item);
    const bool exists = found != content->entries.end();
    // in a damaged file there is nothing to update, so that the next sign-in adds its secret and mends the
    // file
    if (change == Change::Update && !exists)
        return SecretStatus::NotFound;
    if (change == Change::Remove && !exists)
        return content->isDamaged ? failedOnDamage() : SecretStatus::NotFound;
    if (change == Change::Remove)
        content->entries.erase(found);
    else if (exists)
        found->secret = secret;
    else
        content->entries.append({ item, secret });
    if (const auto stored = store(*content); !stored)
        return cannotWrite(stored.error());
    return SecretStatus::Success;
}

std::expected<FileSecretStore::Content, QString> FileSecretStore::load() const
{
    // before it is read, and before QSaveFile takes its permissions over
    if (QFile::permissions(m_path) & others)
        QFile::setPermissions(m_path, onlyMine);
    const auto bytes = readFile(m_path);
    if (!bytes)
        return std::unexpected(bytes.error());
    Content content;
    content.bytes = *bytes;
    if (bytes->isEmpty())
        return content;
    const QJsonDocument document = QJsonDocument::fromJson(*bytes);
    const QJsonValue items = document.object().value("items"_L1);
    content.isDamaged = !items.isArray();
    const QJsonArray array = items.toArray();
    for (const auto &item : array) {
        const auto secret = decoded(item["secret"_L1]);
        if (secret && item["service"_L1].isString() && item["account"_L1].isString())
            content.entries.append(
                { { item["service"_L1].toString(), item["account"_L1].toString() }, *secret });
        else
            content.isDamaged = true;
    }
    if (content.isDamaged)
        content.entries.clear();
    return content;
}

std::expected<void, QString> FileSecretStore::store(const Content &content) const
{
    if (content.isDamaged) {
        if (auto kept = keepBroken(m_path, content.bytes); !kept)
            return kept;
    }
    QJsonArray items;
    for (const Entry &entry : content.entries) {
        items.append(QJsonObject { { u"service"_s, entry.item.service },
                                   { u"account"_s, entry.item.account },
                                   { u"secret"_s, QString::fromLatin1(entry.secret.toBase64()) } });
    }
    return replaceFile(m_path, QJsonDocument(QJsonObject { { u"items"_s, items } }).toJson());
}

SecretStatus FileSecretStore::failedOnDamage()
{
    return failed(
        u"%1, where Kestrel keeps the sign-in, is damaged. Add the accounts again; the damaged file is then "
        "kept beside the new one."_s.arg(m_path));
}

SecretStatus FileSecretStore::failed(const QString &message)
{
    if (!m_said.contains(message)) {
        m_said.insert(message);
        Q_EMIT trouble(message);
    }
    return SecretStatus::Failed;
}

} // namespace kestrel
