#include "platform/linux/GzipDecoder.h"
#include <array>
#include <gio/gio.h>

namespace kestrel {

GzipDecoder::GzipDecoder()
    : m_converter(G_CONVERTER(g_zlib_decompressor_new(G_ZLIB_COMPRESSOR_FORMAT_GZIP)))
{
}

void GzipDecoder::Unref::operator()(GConverter *converter) const
{
    g_object_unref(converter);
}

GzipDecoder::Outcome GzipDecoder::unpack(QByteArrayView packed, QByteArray &body, qsizetype limit)
{
    std::array<char, 65536> buffer;
    gsize written = 0;
    // a full buffer may mean that there is more to come out although all went in
    while (!packed.isEmpty() || written == buffer.size()) {
        if (m_isComplete) {
            if (packed.isEmpty())
                break;
            g_converter_reset(m_converter.get()); // streams may follow one another
            m_isComplete = false;
        }
        gsize read = 0;
        written = 0;
        GError *error = nullptr;
        const auto result =
            g_converter_convert(m_converter.get(), packed.data(), gsize(packed.size()), buffer.data(),
                                buffer.size(), G_CONVERTER_NO_FLAGS, &read, &written, &error);
        if (result == G_CONVERTER_ERROR) {
            const bool wantsMore = g_error_matches(error, G_IO_ERROR, G_IO_ERROR_PARTIAL_INPUT);
            g_error_free(error);
            return wantsMore ? Outcome::Unpacked : Outcome::Broken;
        }
        packed = packed.sliced(qsizetype(read));
        body.append(buffer.data(), qsizetype(written));
        if (body.size() > limit)
            return Outcome::TooLarge;
        m_isComplete = result == G_CONVERTER_FINISHED;
    }
    return Outcome::Unpacked;
}

} // namespace kestrel
