#pragma once

#include "TVXProject.h"
#include "WheelGeometry.h"
#include "WheelParent.h"
#include "WheelPiece.h"

#include <algorithm>
#include <optional>
#include <QAccessible>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class SideTip;

/// The wheel: eight coloured slices, each covered by a pale sector up to its area's value. It draws, and
/// reports which slice the user chose; it fetches and edits nothing.
///
/// Its owner hands it the project and eight empty pieces, tells it to display() after every change of what it
/// shows, and hears of choices through theParent. Everything may be absent, and there may be fewer than eight
/// areas: what is there is drawn. It draws on the screen only, never into a grab or on paper.
///
/// With the keyboard, arrows walk round the dial and Return, Enter or Space choose; assistive tools see one
/// graphic with a child for every area. All of them end in the same call as a click. What a slice says in
/// words is told to all alike: under the mouse, beside the slice that the keyboard is on, to assistive tools.
class TarvexView : public QWidget
{
    Q_OBJECT

public:
    using PercentTexts = std::array<QString, WheelGeometry::sliceCount>;

    explicit TarvexView(QWidget *parent = nullptr);

    /// The project whose areas give names and values; shared, may be empty.
    const TVXProjectPtr &mainData() const { return m_mainData; }
    void setMainData(const TVXProjectPtr &project);

    /// The stored shape of each slice, of which the first eight count; shared, may be empty. Clicks are
    /// tested against them, so nothing can be hit before they were drawn for the first time.
    const std::shared_ptr<WheelPieceList> &piecesOfWheel() const { return m_piecesOfWheel; }
    void setPiecesOfWheel(const std::shared_ptr<WheelPieceList> &pieces) { m_piecesOfWheel = pieces; }

    /// Who hears of the user's choices; not owned, may be null, and must outlive the view or be unset.
    WheelParent *theParent() const { return m_theParent; }
    void setTheParent(WheelParent *parent) { m_theParent = parent; }

    /// The wheel's own coordinates grow upward, and the click that brings its window forward chooses, too.
    static constexpr bool isFlipped() { return false; }
    static constexpr bool acceptsFirstMouse() { return true; }

    const auto &anglesStart() const { return WheelGeometry::anglesStart; }
    const auto &anglesEnd() const { return WheelGeometry::anglesEnd; }
    const auto &colors() const { return WheelGeometry::colors(); }

    /// The current set's percentages ("75", no sign) by area index. They are not drawn, only told in words;
    /// an empty text says nothing.
    void setPercentTexts(const PercentTexts &texts);

    /// Draws again at once, and tells assistive tools what has changed since the last time.
    void display();

    /// How many slices have an area record: what keys and assistive tools can reach.
    int areaCount() const;
    /// The area with that index, or empty.
    TVXAreaPtr areaAt(int index) const;
    /// What the slice says in words: one plain line, or none without an area.
    QString wordsOfPiece(int index) const;
    /// The first piece that contains the point, in the widget's coordinates.
    std::optional<int> pieceAt(const QPointF &position) const;
    /// A rectangle inside the slice, in the widget's coordinates.
    QRect rectOfPiece(int index) const;

    /// Where the keyboard is on the dial, always a slice with an area; 0 before any key.
    int currentPiece() const { return std::clamp(m_currentPiece, 0, std::max(areaCount() - 1, 0)); }
    /// An index without an area is ignored.
    void setCurrentPiece(int index);
    /// Reports the slice to theParent as a click on it would: not on a project that has no areas at all.
    void choosePiece(int index);

    QSize sizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

    /// Hands an event about a slice, its child, to assistive tools.
    virtual void announce(QAccessibleEvent &event) { QAccessible::updateAccessibility(&event); }

private:
    /// What assistive tools were last told of a slice.
    struct Description
    {
        QString name;
        qint32 value = 0;
        QString words;
    };

    std::shared_ptr<WheelPiece> pieceOfWheel(int index) const;
    QPointF centre() const;
    void drawPiece(QPainter &painter, int index);
    void drawValue(QPainter &painter, int index) const;
    void drawFocusRing(QPainter &painter) const;

    std::optional<int> pieceForKey(int key) const;
    void showToolTip(const QPoint &position, const QPoint &globalPosition);
    void showFocusRing(bool shown);
    void showWordsBesidePiece();

    void areasMayHaveChanged();
    void announceDifferences(int index, const Description &before, const Description &now);
    void announceFocus();
    void announceChange(QAccessible::Event change, int index);

    TVXProjectPtr m_mainData;
    std::shared_ptr<WheelPieceList> m_piecesOfWheel;
    WheelParent *m_theParent = nullptr;
    PercentTexts m_percentTexts;
    std::vector<Description> m_announced;
    int m_currentPiece = 0;
    bool m_focusRingShown = false;
    bool m_wordsWanted = false; // beside the slice, while the keyboard is in use
    QPointer<SideTip> m_words;  // a child of the window
    QTimer m_focusAnnouncement;
};
