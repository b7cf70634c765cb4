#include "NSStringMd5.h"

#include <QCryptographicHash>

QString MD5(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    const QByteArrayView upToZero(utf8.constData());
    return QString::fromLatin1(QCryptographicHash::hash(upToZero, QCryptographicHash::Md5).toHex().toUpper());
}
