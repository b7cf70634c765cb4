#pragma once

#include "BusyIndicator.h"

#include <QList>
#include <QPointer>

class QLineEdit;
class Sheet;

/// Spins an indicator and greys out whatever in the sheet takes the keyboard, until the scope ends, however
/// it ends. The focus then returns to where it was.
class SheetBusyScope
{
public:
    /// Neither is owned; the indicator may be null.
    SheetBusyScope(Sheet *sheet, BusyIndicator *indicator);
    ~SheetBusyScope();
    Q_DISABLE_COPY_MOVE(SheetBusyScope)

    /// Has the focus go to that field instead, its text selected.
    void endInField(QLineEdit *field);

private:
    BusyScope m_spinning;
    QPointer<QWidget> m_focusBefore;
    QList<QPointer<QWidget>> m_greyed;
};
