#pragma once

#include "TVXArea.h"

/// What the wheel, and the sheets that work on it, ask of the document behind them.
class WheelParent
{
public:
    virtual ~WheelParent() = default;

    /// The user chose the slice ofIndex, 0 to 7. The area is empty when the wheel has no record for it.
    virtual void showAreaDetails(const TVXAreaPtr &area, int ofIndex) = 0;
    /// Percentages of the current set have changed; show them.
    virtual void updatePercentValues() = 0;
};
