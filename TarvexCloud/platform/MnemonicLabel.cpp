#include "MnemonicLabel.h"

using namespace Qt::StringLiterals;

void MnemonicLabel::setTitleWithMnemonic(const QString &title)
{
    setText(titleWithoutMnemonics(title));
}

QString titleWithoutMnemonics(const QString &title)
{
    QString text = u""_s;
    text.reserve(title.size());
    bool afterAmpersand = false;
    for (const QChar c : title) {
        afterAmpersand = c == u'&' && !afterAmpersand;
        if (!afterAmpersand)
            text += c;
    }
    return text;
}
