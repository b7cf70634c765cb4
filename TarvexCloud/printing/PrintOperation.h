#pragma once

#include "TVXPrintView.h"

class QPagedPaintDevice;

/// Where printing stopped: at which of how many pages, both 0 when it could not begin.
struct PrintFailure
{
    qint64 page = 0;
    qint64 countPages = 0;
};

/// One report on its way to paper, a file or a preview. All of them are drawn by drawPage().
class PrintOperation
{
public:
    PrintOperation(std::unique_ptr<TVXPrintView> view, const PrintInfo &printInfo);
    Q_DISABLE_COPY_MOVE(PrintOperation) // the view points at the print info in here

    PrintInfo &printInfo() { return m_printInfo; }
    TVXPrintView &view() { return *m_view; }

    /// Whether the report shows no goals because they could not be fetched.
    bool lacksGoals() const { return m_lacksGoals; }
    void setLacksGoals(bool lacksGoals) { m_lacksGoals = lacksGoals; }

    /// Lays the report out for that paper. Pages are as of the last call.
    PageRange layOutFor(const QPageLayout &pageLayout);
    /// Draws a page, counted from 1. The painter's unit is a point and its origin the corner of the printable
    /// area; nothing is drawn outside that area.
    void drawPage(QPainter &painter, qint64 page);

    /// Lays out and draws every page of the device's choice on the device, or fails on the way.
    std::optional<PrintFailure> runOn(QPagedPaintDevice &device);

private:
    PrintInfo m_printInfo;
    std::unique_ptr<TVXPrintView> m_view;
    bool m_lacksGoals = false;
};
