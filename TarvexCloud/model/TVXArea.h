#pragma once

#include <memory>
#include <QString>
#include <vector>

/// One of the eight life areas of the wheel. A plain record: it checks nothing and shares the strings it is
/// given.
class TVXArea
{
public:
    /// The service's id of the area.
    qint64 idOfArea() const { return m_idOfArea; }
    void setIdOfArea(qint64 id) { m_idOfArea = id; }

    /// The area's score as the service stores it; a full slice of the wheel is 9.
    qint32 valueOfArea() const { return m_valueOfArea; }
    void setValueOfArea(qint32 value) { m_valueOfArea = value; }

    /// The name as the user typed it, never in its wire form.
    const QString &name() const { return m_name; }
    void setName(const QString &name) { m_name = name; }

    /// Exactly the service's text; nothing in the client interprets it.
    const QString &color() const { return m_color; }
    void setColor(const QString &color) { m_color = color; }

private:
    qint64 m_idOfArea = 0;
    qint32 m_valueOfArea = 0;
    QString m_name = QStringLiteral("");
    QString m_color = QStringLiteral("");
};

using TVXAreaPtr = std::shared_ptr<TVXArea>;
using TVXAreaList = std::vector<TVXAreaPtr>;
