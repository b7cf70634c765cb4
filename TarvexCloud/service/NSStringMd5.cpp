#include "NSStringMd5.h"

#include <QCryptographicHash>

QString MD5(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    const qsizetype zero = utf8.indexOf('\0');
    const QByteArrayView hashed = zero < 0 ? QByteArrayView(utf8) : QByteArrayView(utf8).first(zero);
    QCryptographicHash md5(QCryptographicHash::Md5);
    md5.addData(hashed);
    return QString::fromLatin1(md5.result().toHex().toUpper());
}
