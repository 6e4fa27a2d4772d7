#include "app/GoogleClientFile.h"
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace kestrel {

std::expected<GoogleClient, QString> googleClient(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return GoogleClient { QStringLiteral(KESTREL_GOOGLE_CLIENT_ID),
                              QStringLiteral(KESTREL_GOOGLE_CLIENT_SECRET) };
    if (!file.open(QIODevice::ReadOnly))
        return std::unexpected(
            u"The OAuth client file %1 cannot be read: %2"_s.arg(path, file.errorString()));
    const QJsonObject outer = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonObject client = outer.contains("installed"_L1) ? outer["installed"_L1].toObject() : outer;
    GoogleClient result { client["client_id"_L1].toString(), client["client_secret"_L1].toString() };
    if (!result.isComplete()) {
        return std::unexpected(
            u"The OAuth client file %1 holds no \"client_id\" and \"client_secret\". "
            "Download it again from the Google Cloud console (docs/google-client.md)."_s.arg(path));
    }
    return result;
}

QString missingClientMessage(const QString &path, const GoogleClient &client)
{
    if (client.isComplete())
        return {};
    return u"This build of Kestrel has no Google OAuth client of its own, so it cannot sign in yet.\n"
           "Make one in a few minutes, as docs/google-client.md shows, and save its file as\n"
           "  %1"_s.arg(path);
}

} // namespace kestrel
