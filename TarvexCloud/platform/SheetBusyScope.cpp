#include "SheetBusyScope.h"

#include "Sheet.h"

#include <QLineEdit>

SheetBusyScope::SheetBusyScope(Sheet *sheet, BusyIndicator *indicator)
    : m_spinning(indicator), m_focusBefore(sheet->focusWidget())
{
    const auto children = sheet->findChildren<QWidget *>();
    for (QWidget *child : children) {
        if (!(child->focusPolicy() & Qt::TabFocus) || !child->isEnabledTo(sheet))
            continue;
        child->setEnabled(false);
        m_greyed.append(child);
    }
}

SheetBusyScope::~SheetBusyScope()
{
    for (const QPointer<QWidget> &child : m_greyed)
        if (child)
            child->setEnabled(true);
    if (m_focusBefore)
        m_focusBefore->setFocus();
}

void SheetBusyScope::endInField(QLineEdit *field)
{
    field->selectAll();
    m_focusBefore = field;
}
