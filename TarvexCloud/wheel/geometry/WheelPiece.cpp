#include "WheelPiece.h"

#include <algorithm>

void WheelPiece::append(const QPainterPath &outline)
{
    ++m_copies;
    const auto known = std::find(m_outlines.begin(), m_outlines.end(), outline);
    if (known != m_outlines.end()) {
        std::rotate(known, known + 1, m_outlines.end());
        return;
    }
    if (m_outlines.size() == rememberedOutlines)
        m_outlines.erase(m_outlines.begin());
    m_outlines.push_back(outline);
}

bool WheelPiece::contains(const QPointF &point) const
{
    return std::any_of(m_outlines.begin(), m_outlines.end(),
                       [&](const QPainterPath &outline) { return outline.contains(point); });
}

std::span<const QPainterPath> WheelPiece::outlinesToPaint() const
{
    return std::span(m_outlines).last(std::min(m_outlines.size(), paintedOutlines));
}
