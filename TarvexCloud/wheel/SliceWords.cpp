#include "SliceWords.h"

#include "ElidedLabel.h"
#include "TarvexView.h"
#include "Words.h"

using namespace Qt::StringLiterals;

namespace {

// Enough to know an area by; its label has the whole.
constexpr qsizetype longestText = 40;

QString inBrief(const QString &text)
{
    QString line = text.simplified();
    return line.size() > longestText ? beginningOf(line, longestText) + u'\u2026' : line;
}

// Left alone, a name in Hebrew or Arabic would turn the whole sentence round.
QString isolated(const QString &name)
{
    return name.isRightToLeft() ? u'\u2068' + name + u'\u2069' : name;
}

QString ratedValue(const QString &name, qint32 value)
{
    const QString rating = Words::rating(value);
    if (rating.isEmpty())
        return TarvexView::tr("%1: %2.").arg(name, QString::number(value));
    return TarvexView::tr("%1: %2 - %3.").arg(name, QString::number(value), rating);
}

} // namespace

QString sliceWords(const QString &name, qint32 value, const QString &percent)
{
    QString rated = ratedValue(isolated(inBrief(shownNameOf(name))), value);
    const QString done = inBrief(singleLineOf(percent));
    if (done.isEmpty())
        return rated;
    if (done == "100"_L1)
        return TarvexView::tr("%1 All of its goals in this set are done, or it has none.").arg(rated);
    return TarvexView::tr("%1 %2% of its goals in this set are done.").arg(rated, done);
}
