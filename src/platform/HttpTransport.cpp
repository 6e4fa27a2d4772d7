#include "platform/HttpTransport.h"
#include <QStringDecoder>

namespace kestrel {

QString HttpResponse::bodyText() const
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(body);
    return decoder.hasError() ? QString() : text;
}

} // namespace kestrel
