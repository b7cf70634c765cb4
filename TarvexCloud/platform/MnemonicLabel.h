#pragma once

#include "ElidedLabel.h"

/// A plain label whose title goes through mnemonic processing: "&&" shows one ampersand and a single "&"
/// none. It underlines nothing and is nobody's shortcut. It also carries a number for its owner, its tag.
class MnemonicLabel : public ElidedLabel
{
    Q_OBJECT
public:
    using ElidedLabel::ElidedLabel;

    void setTitleWithMnemonic(const QString &title);

    qint64 tag() const { return m_tag; }
    void setTag(qint64 tag) { m_tag = tag; }

private:
    qint64 m_tag = 0;
};

/// The text that a title with mnemonics shows. A null title gives an empty text.
QString titleWithoutMnemonics(const QString &title);
