#include "demo/SampleCall.h"
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace kestrel::demo {

namespace {

Answer file(const QString &name, const QByteArray &contentType)
{
    QFile content(u":/demo/call/"_s + name);
    if (!content.open(QIODevice::ReadOnly))
        return { .status = 404, .contentType = "text/plain", .body = {} };
    return { .contentType = contentType,
             .body = content.readAll(),
             .headers = { { "Cache-Control", "no-store" },
                          { "Content-Security-Policy",
                            "default-src 'none'; script-src 'self'; style-src 'self'; connect-src 'self'; "
                            "img-src data:; "
                            "base-uri 'none'; require-trusted-types-for 'script'; trusted-types 'none'" } } };
}

} // namespace

SampleCall::SampleCall(const QSslConfiguration &tls)
    : m_server([this](const ReceivedRequest &request) { return answer(request); }, tls)
{
}

std::expected<QSslConfiguration, QString> SampleCall::selfSigned(const QString &host)
{
    const QTemporaryDir folder;
    const QString keyFile = folder.filePath(u"key.pem"_s);
    const QString certificateFile = folder.filePath(u"certificate.pem"_s);
    QProcess openssl;
    openssl.start(u"openssl"_s,
                  { u"req"_s, u"-x509"_s, u"-newkey"_s, u"rsa:2048"_s, u"-nodes"_s, u"-days"_s, u"2"_s,
                    u"-subj"_s, u"/CN="_s + host, u"-addext"_s, u"subjectAltName=DNS:"_s + host, u"-keyout"_s,
                    keyFile, u"-out"_s, certificateFile });
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        return std::unexpected(u"openssl made no certificate: %1 %2"_s.arg(
            openssl.errorString(), QString::fromUtf8(openssl.readAllStandardError()).trimmed()));

    QFile key(keyFile);
    QFile certificate(certificateFile);
    if (!key.open(QIODevice::ReadOnly) || !certificate.open(QIODevice::ReadOnly))
        return std::unexpected(u"openssl left no certificate behind."_s);
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setLocalCertificate(QSslCertificate(&certificate));
    configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
    configuration.setPeerVerifyMode(QSslSocket::VerifyNone);
    return configuration;
}

Answer SampleCall::answer(const ReceivedRequest &request)
{
    const QString path = request.path();
    if (path == "/-/clicks"_L1) {
        if (request.method == "POST") {
            m_clicks.append(QString::fromUtf8(request.body));
            m_times.append(valueOf(request.query(), u"at"_s).toDouble());
        } else if (request.method == "DELETE") {
            m_clicks = {};
            m_times = {};
        }
        const QJsonArray &told = request.query().hasQueryItem(u"times"_s) ? m_times : m_clicks;
        return { .contentType = "application/json",
                 .body = QJsonDocument(told).toJson(QJsonDocument::Compact) };
    }
    if (path == "/-/call.js"_L1)
        return file(u"call.js"_s, "text/javascript");
    if (path == "/-/call.css"_L1)
        return file(u"call.css"_s, "text/css");
    return file(u"call.html"_s, "text/html; charset=utf-8");
}

} // namespace kestrel::demo
