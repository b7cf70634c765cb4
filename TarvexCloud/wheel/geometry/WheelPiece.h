#pragma once

#include <memory>
#include <QPainterPath>
#include <span>
#include <vector>

/// The stored shape of one slice: empty when made, it gains one more copy of the slice's closed outline at
/// every draw, and it is what clicks are tested against.
///
/// Copies of one outline are counted rather than kept, so the millionth draw costs what the first did; filled
/// by the non-zero winding rule, any number of copies has the shape of one. A view that was resized appends
/// an outline elsewhere; the piece then covers both.
class WheelPiece
{
public:
    /// How many distinct outlines are remembered, the least recently drawn giving way. Outlines differ only
    /// while a view is being resized, and by whole pixels at least: one sweep over a large screen makes fewer
    /// than this, and what gives way to that many close neighbours is all but covered by them.
    static constexpr std::size_t rememberedOutlines = 1024;
    /// How many of them are worth painting: each costs a frame as much as the first.
    static constexpr std::size_t paintedOutlines = 16;

    /// Adds one copy of a closed outline.
    void append(const QPainterPath &outline);

    /// Whether any outline ever appended contains the point; an empty piece contains none.
    bool contains(const QPointF &point) const;

    /// The number of closed sub-paths appended so far, equal ones included.
    qint64 copies() const { return m_copies; }
    /// The distinct outlines, the most recently drawn last.
    const std::vector<QPainterPath> &outlines() const { return m_outlines; }
    /// The ones to paint, each once.
    std::span<const QPainterPath> outlinesToPaint() const;

private:
    std::vector<QPainterPath> m_outlines;
    qint64 m_copies = 0;
};

using WheelPieceList = std::vector<std::shared_ptr<WheelPiece>>;
