#pragma once

#include <array>
#include <memory>
#include <QString>
#include <vector>

/// One named snapshot of the wheel: a single object is a single set.
///
/// The eight percentages stay the text the service sent ("75"); percent1 belongs to the first area of the
/// wheel and so on round the dial.
class TVXSets
{
public:
    static constexpr int areaCount = 8;

    TVXSets() { m_percents.fill(QStringLiteral("")); }

    qint64 idOfSets() const { return m_idOfSets; }
    void setIdOfSets(qint64 id) { m_idOfSets = id; }

    const QString &name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    const QString &percent1() const { return m_percents[0]; }
    void setPercent1(const QString &percent) { m_percents[0] = percent; }
    const QString &percent2() const { return m_percents[1]; }
    void setPercent2(const QString &percent) { m_percents[1] = percent; }
    const QString &percent3() const { return m_percents[2]; }
    void setPercent3(const QString &percent) { m_percents[2] = percent; }
    const QString &percent4() const { return m_percents[3]; }
    void setPercent4(const QString &percent) { m_percents[3] = percent; }
    const QString &percent5() const { return m_percents[4]; }
    void setPercent5(const QString &percent) { m_percents[4] = percent; }
    const QString &percent6() const { return m_percents[5]; }
    void setPercent6(const QString &percent) { m_percents[5] = percent; }
    const QString &percent7() const { return m_percents[6]; }
    void setPercent7(const QString &percent) { m_percents[6] = percent; }
    const QString &percent8() const { return m_percents[7]; }
    void setPercent8(const QString &percent) { m_percents[7] = percent; }

    /// The same eight texts by area index, 0 to 7; any other index throws std::out_of_range.
    const QString &percentOfArea(int index) const { return m_percents.at(static_cast<std::size_t>(index)); }
    void setPercentOfArea(int index, const QString &percent)
    {
        m_percents.at(static_cast<std::size_t>(index)) = percent;
    }

private:
    qint64 m_idOfSets = 0;
    QString m_name = QStringLiteral("");
    std::array<QString, areaCount> m_percents;
};

using TVXSetsPtr = std::shared_ptr<TVXSets>;
using TVXSetsList = std::vector<TVXSetsPtr>;
