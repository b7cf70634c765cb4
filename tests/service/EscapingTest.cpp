#include "Escaping.h"

#include <QRandomGenerator>
#include <QTest>

namespace {

struct Pair
{
    QString character;
    QString token;
};

const QList<Pair> &table()
{
    static const QList<Pair> pairs = [] {
        const QStringList rows =
            QStringLiteral("? quest ] cbc [ cbo & amp : dp ; dc . d , c ` bq1 > tbc < tbo % prcnt / slr "
                           "\\ sll ^ v $ buks @ woof ~ - | l")
                .split(u' ');
        QList<Pair> made;
        for (qsizetype i = 0; i < rows.size(); i += 2)
            made.append({rows[i], QStringLiteral("{_%1_}").arg(rows[i + 1])});
        return made;
    }();
    return pairs;
}

/// Nineteen replacements one after another: what both directions mean.
QString escapedStepByStep(QString text)
{
    for (const Pair &pair : table())
        text.replace(pair.character, pair.token);
    return text;
}

QString unescapedStepByStep(QString text)
{
    for (const Pair &pair : table())
        text.replace(pair.token, pair.character);
    return text;
}

/// Pieces that make tokens, near-tokens and everything around them likely.
QString generatedText(QRandomGenerator &random)
{
    static const QStringList odd = {QStringLiteral("{"),
                                    QStringLiteral("}"),
                                    QStringLiteral("_"),
                                    QStringLiteral("{_"),
                                    QStringLiteral("_}"),
                                    QStringLiteral("{_d"),
                                    QStringLiteral("{_}"),
                                    QStringLiteral("{__}"),
                                    QStringLiteral("amp"),
                                    QStringLiteral("{_AMP_}"),
                                    QStringLiteral("-"),
                                    QStringLiteral("{_end_}"),
                                    QStringLiteral("{_dpp_}"),
                                    QStringLiteral("é"),
                                    QStringLiteral("日本"),
                                    QStringLiteral("😀"),
                                    QStringLiteral(" "),
                                    QStringLiteral("\n"),
                                    QString(QChar(0)),
                                    QString(QChar(0xfeff)),
                                    QStringLiteral("a = b"),
                                    QStringLiteral("{{_d_}}"),
                                    QStringLiteral("{_qu{_d_}est_}")};
    QString text;
    for (quint32 left = random.bounded(1U, 12U); left > 0; --left) {
        const Pair &pair = table()[random.bounded(static_cast<int>(table().size()))];
        const int choice = random.bounded(3);
        text += choice == 0   ? pair.character
                : choice == 1 ? pair.token
                              : odd[random.bounded(int(odd.size()))];
    }
    return text;
}

} // namespace

class EscapingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyCharacterHasItsToken();
    void textsTravelLikeThis_data();
    void textsTravelLikeThis();
    void onePassEqualsNineteenReplacements_data();
    void onePassEqualsNineteenReplacements();
    void textWithNothingToReplaceIsTheSameString();
};

void EscapingTest::everyCharacterHasItsToken()
{
    QCOMPARE(table().size(), 19);
    for (const Pair &pair : table()) {
        QCOMPARE(escapedForWire(pair.character), pair.token);
        QCOMPARE(unescapedFromWire(pair.token), pair.character);
    }
}

void EscapingTest::textsTravelLikeThis_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("readBack");

    const auto row = [](const char *name, const char *typed, const char *sent,
                        const char *readBack = nullptr) {
        QTest::newRow(name) << QString::fromUtf8(typed) << QString::fromUtf8(sent)
                            << QString::fromUtf8(readBack ? readBack : typed);
    };
    row("query", "a&b?c", "a{_amp_}b{_quest_}c");
    row("numbers", "50% of 1.5/2", "50{_prcnt_} of 1{_d_}5{_slr_}2");
    row("empty", "", "");
    row("untouched marks", "{}_-=+#! \"'\n\té日", "{}_-=+#! \"'\n\té日");
    row("typed token", "{_dp_}", "{_dp_}", ":");
    row("end mark", "x{_end_}y", "x{_end_}y");
    row("token inside braces", "{{_d_}}", "{{_d_}}", "{.}");
}

void EscapingTest::textsTravelLikeThis()
{
    QFETCH(QString, typed);
    QTEST(escapedForWire(typed), "sent");
    QTEST(unescapedFromWire(escapedForWire(typed)), "readBack");
}

void EscapingTest::onePassEqualsNineteenReplacements_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 20; ++seed)
        QTest::addRow("texts of seed %u", seed) << seed;
}

void EscapingTest::onePassEqualsNineteenReplacements()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int i = 0; i < 500; ++i) {
        const QString text = generatedText(random);
        QCOMPARE(escapedForWire(text), escapedStepByStep(text));
        QCOMPARE(unescapedFromWire(text), unescapedStepByStep(text));
        const QByteArray utf8 = u'x' + text.toUtf8();
        QCOMPARE(unescapedFromUtf8Wire({utf8.constData(), static_cast<std::size_t>(utf8.size())}),
                 u'x' + unescapedStepByStep(text));
    }
}

void EscapingTest::textWithNothingToReplaceIsTheSameString()
{
    const QString plain = QStringLiteral("Run 5 km {_often_}").repeated(3);

    QCOMPARE(escapedForWire(plain).constData(), plain.constData());
    QCOMPARE(unescapedFromWire(plain).constData(), plain.constData());
    QVERIFY(!unescapedFromUtf8Wire("").isNull());
}

QTEST_APPLESS_MAIN(EscapingTest)
#include "EscapingTest.moc"
