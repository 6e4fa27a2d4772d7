#include "auth/ResultPage.h"
#include "auth/Utf8.h"
#include <QFile>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace kestrel {

namespace {

const QString pageHead = uR"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Kestrel — Signed in</title>
<style>
html { height: 100%; }
body {
    box-sizing: border-box;
    min-height: 100%;
    margin: 0;
    padding-top: 14vh;
    background: #f7f7fb;
    font-family: system-ui, sans-serif;
}
.card {
    box-sizing: border-box;
    max-width: 480px;
    margin: 0 auto;
    padding: 32px 36px;
    border-radius: 18px;
    background: #ffffff;
    box-shadow: 0 8px 32px rgba(0, 0, 0, 0.18);
    color: #1c1c20;
    text-align: center;
}
h1 { margin: 0 0 8px; color: #1c1c20; font-size: 22px; font-weight: 700; }
p { margin: 0; color: #56565a; font-size: 14px; }
.logo {
    width: 112px;
    height: 112px;
    margin: 0 auto 22px;
    filter: drop-shadow(0 8px 22px rgba(0, 0, 0, 0.2));
}
.logo svg { display: block; width: 100%; height: 100%; }
.logo-fallback {
    width: 88px;
    height: 88px;
    border-radius: 22px;
    background: linear-gradient(135deg, #7C5CFF, #2DC8F0);
    color: #ffffff;
    font-size: 44px;
    font-weight: 700;
    line-height: 88px;
    text-align: center;
}
@media (prefers-color-scheme: dark) { body { background: #0c0d12; } }
</style>
</head>
<body>
<div class="card">
)"_s;

} // namespace

QString logoElement(const QString &path)
{
    QFile file(path);
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    QString icon = fromStrictUtf8(content).value_or(QString());
    icon.remove(QRegularExpression(uR"(<\?xml[^>]+\?>)"_s));
    icon = icon.trimmed();
    if (icon.isEmpty())
        return u"<div class=\"logo logo-fallback\">\u203A</div>"_s;
    return u"<div class=\"logo\">"_s + icon + u"</div>"_s;
}

QByteArray resultPage(const QString &message, const QString &logo)
{
    const QString body =
        logo + u"\n<h1>Kestrel is connected</h1>\n<p>"_s + message + u"</p>\n</div>\n</body>\n</html>\n"_s;
    return (pageHead + body).toUtf8();
}

} // namespace kestrel
