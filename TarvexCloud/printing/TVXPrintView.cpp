#include "TVXPrintView.h"

#include <QFontMetricsF>

using namespace Qt::StringLiterals;

// Outside any namespace, as the macro wants it: a static library's resources are linked only when asked for.
static void initResources()
{
    Q_INIT_RESOURCE(printing);
}

namespace {
constexpr qreal lineHeightPerCapHeight = 2.2;
constexpr qreal leastSpacing = 1.0 / 64; // what the toolkit tells apart from none

// One unit of the painter is one point, hence pixels: point sizes would follow the device's resolution.
QFont fontOf(const QString &family, QFont::StyleHint kind, int size)
{
    QFont font(family);
    font.setStyleHint(kind);
    font.setPixelSize(size);
    font.setHintingPreference(QFont::PreferNoHinting);
    // Spaced letters form no ligatures, so that "office" is found in the file as it was written.
    font.setLetterSpacing(QFont::AbsoluteSpacing, leastSpacing);
    return font;
}

float lineHeightOf(const TextAttributes &attributes)
{
    return static_cast<float>(lineHeightPerCapHeight * QFontMetricsF(attributes.font()).capHeight());
}
} // namespace

TVXPrintView::TVXPrintView(const QRectF &frame)
{
    initResources();
    m_checkboxes = {QImage(u":/printing/checkbox_off.gif"_s), QImage(u":/printing/checkbox_on.gif"_s)};
    setFrame(frame);
    const QString sans = u"Futura"_s;
    const QString serif = u"Big Caslon"_s;
    // Symbola is there for emoji: the coloured ones of other fonts do not get into a PDF.
    QFont::insertSubstitutions(sans, u"URW Gothic;DejaVu Sans;Symbola"_s.split(u';'));
    QFont::insertSubstitutions(serif, u"EB Garamond 12;EB Garamond;DejaVu Serif;Symbola"_s.split(u';'));
    m_attributesDefault = TextAttributes(fontOf(sans, QFont::SansSerif, /*size=*/11));
    m_attributesDefaultRight = TextAttributes(m_attributesDefault.font(), Qt::AlignRight);
    m_attributesTitle = TextAttributes(fontOf(sans, QFont::SansSerif, /*size=*/18));
    m_attributesAreas = TextAttributes(fontOf(serif, QFont::Serif, /*size=*/14));
    m_lineHeights = {lineHeightOf(m_attributesTitle), lineHeightOf(m_attributesAreas),
                     lineHeightOf(m_attributesDefault)};
}

void TVXPrintView::setProject(const TVXProjectPtr &project)
{
    m_project = project ? project : std::make_shared<TVXProject>();
    m_layout.reset();
}

void TVXPrintView::setTitleOfDocument(const QString &title)
{
    m_titleOfDocument = title;
    m_layout.reset();
}

void TVXPrintView::setFrame(const QRectF &frame)
{
    const QSizeF largest(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    m_frame = frame;
    resize(frame.size().boundedTo(largest).toSize());
}

bool TVXPrintView::knowsPageRange(PageRange *range)
{
    const PrintInfo info = m_printInfo ? *m_printInfo : PrintInfo();
    const auto countGoals = static_cast<qint64>(m_project->goals() ? m_project->goals()->size() : 0);
    m_pageRect = info.imageablePageBounds();
    m_pageHeight = ReportPages::pageHeight(m_pageRect);
    m_documentHeight = ReportPages::documentHeight(m_lineHeights, countGoals);
    setFrame(QRectF(0, 0, info.paperSize().width(), static_cast<qreal>(m_documentHeight)));
    m_countPages = ReportPages::countPages(m_documentHeight, m_pageHeight);
    m_layout.reset();
    *range = {/*location=*/1, m_countPages};
    return true;
}

QRectF TVXPrintView::rectForPage(qint64 page)
{
    m_currentPage = page - 1;
    return ReportPages::rectForPage(m_pageRect, page);
}

const ReportLayout &TVXPrintView::layoutOfReport()
{
    if (!m_layout)
        m_layout.emplace(*m_project, m_titleOfDocument, m_lineHeights);
    return *m_layout;
}
