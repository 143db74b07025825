#include "platform/ForeignText.h"

namespace corvane {

QString foreignText(std::string_view bytes)
{
    QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    if (bytes.starts_with("\xEF\xBB\xBF")) // Qt drops it.
        text.prepend(QChar::ByteOrderMark);
    return text;
}

} // namespace corvane
