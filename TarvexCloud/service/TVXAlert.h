#pragma once

#include <QString>

/// Shows a failure to the user.
class TVXAlert
{
public:
    virtual ~TVXAlert() = default;

    /// Modal: returns when the user has dismissed it. The description is plain text.
    virtual void showError(const QString &description) = 0;
};
