#pragma once

#include <memory>
#include <QAbstractScrollArea>
#include <QPageLayout>

class PrintOperation;

/// The report's pages one below the other on the screen. A page is drawn when it comes into view, so that a
/// long report is seen as soon as a short one.
class ReportPreview : public QAbstractScrollArea
{
    Q_OBJECT
public:
    explicit ReportPreview(const std::shared_ptr<PrintOperation> &operation, QWidget *parent = nullptr);

    const QPageLayout &pageLayout() const { return m_pageLayout; }
    /// Lays the report out for that paper and shows it from the first page.
    void setPageLayout(const QPageLayout &layout);

    qint64 countPages() const { return m_countPages; }
    /// The page that takes up the middle of the view, counted from 1.
    qint64 currentPage() const;

    /// Makes a page as wide as the view, now and whenever the view is resized.
    void fitWidth() { setFit(Fit::Width); }
    /// Makes a whole page fit into the view, likewise.
    void fitPage() { setFit(Fit::Page); }
    void zoomBy(qreal factor);

Q_SIGNALS:
    void currentPageChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class Fit { None, Width, Page };

    void setFit(Fit fit);
    void setZoom(qreal zoom);
    void updateScrollBars();
    QSizeF pageSize() const;
    qint64 pageAt(qreal viewportY) const;
    QRectF rectOfPage(qint64 page) const;
    void drawPage(QPainter &painter, qint64 page, const QRect &exposed);

    std::shared_ptr<PrintOperation> m_operation;
    QPageLayout m_pageLayout;
    qint64 m_countPages = 0;
    qreal m_zoom = 1;
    Fit m_fit = Fit::Width;
};
