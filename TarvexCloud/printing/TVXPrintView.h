#pragma once

#include "OneLineText.h"
#include "PrintInfo.h"
#include "ReportLayout.h"
#include "WheelGeometry.h"
#include "WheelPiece.h"

#include <optional>
#include <QImage>
#include <QWidget>

/// The report of one set as it is printed: title, wheel with names, and every area with its goals.
///
/// It is made for one print operation and never shown; painted on the screen it stays blank. Its coordinates
/// are points with y growing downward from the top of the first page.
class TVXPrintView : public QWidget
{
    Q_OBJECT
public:
    /// Takes the fonts "Futura" and "Big Caslon", or their substitutes where they are not installed, and
    /// their line heights. The frame is set anew by knowsPageRange().
    explicit TVXPrintView(const QRectF &frame = QRectF());

    /// Told to whoever asks, and used by nobody: y grows downward, and nothing behind the view shows through.
    static constexpr bool isFlipped() { return true; }
    static constexpr bool isOpaque() { return true; }

    /// The project whose areas and goals are printed; shared, may be empty. The report is laid out from it
    /// at knowsPageRange().
    const TVXProjectPtr &project() const { return m_project; }
    void setProject(const TVXProjectPtr &project);

    /// The screen wheel's pieces. The report's wheel is drawn from the project alone.
    const std::shared_ptr<WheelPieceList> &piecesOfWheel() const { return m_piecesOfWheel; }
    void setPiecesOfWheel(const std::shared_ptr<WheelPieceList> &pieces) { m_piecesOfWheel = pieces; }

    const QString &titleOfDocument() const { return m_titleOfDocument; }
    void setTitleOfDocument(const QString &title);

    /// What the current operation prints on; not owned, and must outlive the view or be unset.
    void setPrintInfo(const PrintInfo *printInfo) { m_printInfo = printInfo; }

    /// Lays the report out for the print info's paper and tells its pages. Returns true: the view knows its
    /// pages itself.
    bool knowsPageRange(PageRange *range);
    /// The band of the report on that page, counted from 1.
    QRectF rectForPage(qint64 page);

    /// Draws the part of the report that a page shows, unless the painter draws on the screen. The painter's
    /// unit is a point, and clipping to the page is its owner's.
    void drawRect(QPainter &painter, const QRectF &rect);
    /// Draws what it is given, wherever it lies.
    void drawItems(QPainter &painter, const ReportItems &items) const;

    /// The report as laid out; made now if nobody has asked for its pages yet.
    const ReportLayout &layoutOfReport();

    const auto &anglesStart() const { return startAngles; }
    const auto &anglesEnd() const { return endAngles; }
    const auto &colors() const { return WheelGeometry::colors(); }

    const TextAttributes &attributesDefault() const { return m_attributesDefault; }
    const TextAttributes &attributesDefaultRight() const { return m_attributesDefaultRight; }
    const TextAttributes &attributesTitle() const { return m_attributesTitle; }
    const TextAttributes &attributesAreas() const { return m_attributesAreas; }
    float lineHeight() const { return m_lineHeights.goal; }
    float lineHeightArea() const { return m_lineHeights.area; }
    float lineHeightTitle() const { return m_lineHeights.title; }

    const QRectF &pageRect() const { return m_pageRect; }
    qint32 pageHeight() const { return m_pageHeight; }
    float documentHeight() const { return m_documentHeight; }
    qint64 countPages() const { return m_countPages; }
    /// Always 0: pages are bands of points, not of lines.
    static constexpr qint32 linesPerPage() { return 0; }
    /// Counted from 0: the page that rectForPage() was asked for last.
    qint64 currentPage() const { return m_currentPage; }
    /// As wide as the paper and as high as the whole report.
    const QRectF &frame() const { return m_frame; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    // On the page, whose y grows downward, these run clockwise from twelve o'clock as the screen's do.
    static constexpr std::array<float, WheelGeometry::sliceCount> startAngles = {270, 315, 0,   45,
                                                                                 90,  135, 180, 225};
    static constexpr std::array<float, WheelGeometry::sliceCount> endAngles = {315, 360, 45,  90,
                                                                               135, 180, 225, 270};

    struct Checkboxes
    {
        QImage off;
        QImage on;
    };

    void setFrame(const QRectF &frame);
    void drawItem(QPainter &painter, const ReportItem &item, const Checkboxes &checkboxes) const;
    void drawSlice(QPainter &painter, const ReportItem &item) const;
    const TextAttributes &attributesOf(ReportItem::Kind kind) const;

    QRectF m_pageRect;
    TextAttributes m_attributesDefault;
    TextAttributes m_attributesDefaultRight;
    TextAttributes m_attributesTitle;
    TextAttributes m_attributesAreas;
    ReportLineHeights m_lineHeights;
    float m_documentHeight = 0;
    qint64 m_countPages = 0;
    qint64 m_currentPage = 0;
    qint32 m_pageHeight = 0;
    QRectF m_frame;
    // Kept for the operation: a file stores each image object once, and one loaded anew would be another.
    Checkboxes m_checkboxes;

    TVXProjectPtr m_project = std::make_shared<TVXProject>();
    std::shared_ptr<WheelPieceList> m_piecesOfWheel;
    QString m_titleOfDocument = QStringLiteral("");
    const PrintInfo *m_printInfo = nullptr;
    std::optional<ReportLayout> m_layout;
};
